// Text that goes into a page of HTML.
//
// Names come out of other people's files, so nothing that was read is put between tags, into an
// attribute or into a script element but through these two.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace vort {

// For element contents and quoted attribute values.
std::string escaped(std::string_view text);

// For a <script type="application/json">: no '<', so nothing in it ends the element. Bytes that are
// not UTF-8 are replaced.
std::string json_for_script(const nlohmann::json& value);

// <tag class="name">text</tag>, the text escaped.
std::string element(std::string_view tag, std::string_view text, std::string_view name = {});

}  // namespace vort
