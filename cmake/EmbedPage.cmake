# Puts the report's page together and writes it as a C++ source.
#
#   cmake -DPAGE=DIR -DCHARTJS=FILE -DOUT=FILE -P EmbedPage.cmake
#
# The bytes go in as escapes: no byte of a script can end a literal, and no compiler asks for its
# encoding. Literals are short enough for every compiler.
file(READ "${PAGE}/template.html" page)
file(READ "${PAGE}/page.css" style)
file(READ "${CHARTJS}" chartjs)
set(script "")
foreach(name theme words tooltip zoom labels manhattan chance bars page)
  file(READ "${PAGE}/${name}.js" text)
  string(APPEND script "${text}")
endforeach()
foreach(part style chartjs script)
  string(REPLACE "/*@${part}@*/" "${${part}}" page "${page}")
endforeach()

file(WRITE "${OUT}.html" "${page}")
file(READ "${OUT}.html" bytes HEX)
file(REMOVE "${OUT}.html")
string(LENGTH "${bytes}" length)

set(literals "")
set(place 0)
while(place LESS length)
  string(SUBSTRING "${bytes}" ${place} 16000 chunk)
  string(REGEX REPLACE "(..)" "\\\\x\\1" chunk "${chunk}")
  string(APPEND literals "    \"${chunk}\",\n")
  math(EXPR place "${place} + 16000")
endwhile()

file(WRITE "${OUT}" "// Generated from src/report/page.
#include <array>
#include <string_view>

#include \"report/page_template.h\"

namespace vort {
namespace {

constexpr std::string_view kPieces[] = {
${literals}};

}  // namespace

std::string page_template() {
    std::string page;
    for (const std::string_view piece : kPieces) page += piece;
    return page;
}

}  // namespace vort
")
