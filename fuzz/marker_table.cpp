// The marker table: the first byte says how many markers are expected, the rest is the file.
#include "genotypes/marker_table.h"

#include <sstream>

#include "support/files.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

constexpr MarkerTable::Numbering kBases[] = {MarkerTable::Numbering::kFromZero,
                                             MarkerTable::Numbering::kFromOne};

std::string told_of(const MarkerTable& table) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    table.check(diagnostics);
    diagnostics.finish();
    return told.str();
}

void check_slots(const MarkerTable& table, int markers) {
    for (int m = -1; m <= markers + 1; ++m) {
        for (const auto base : kBases) {
            const MarkerTable::Entry entry = table.find(m, base);
            require(entry.name.size() <= MarkerTable::kNameLength, "names are cut");
            require(entry.name.find('\0') == std::string_view::npos, "a name ends at its NUL");
            require(table.locate(m, base).chromosome <= 26, "there are 26 chromosomes");
        }
    }
}

// A table without faults is the same when its text is read.
void check_round_trip(const MarkerTable& table, int markers, Files& files) {
    const std::string text = table.text();
    const MarkerTable again = MarkerTable::from_file(files.put("again", text), markers);
    require(told_of(again).empty(), "a sound table is sound when written and read");
    require(again.text() == text, "a table is read as it was written");
}

void run(std::string_view input) {
    static Files files;
    if (input.empty()) return;
    const int markers = static_cast<unsigned char>(input.front());
    const MarkerTable table = MarkerTable::from_file(files.put("table", input.substr(1)), markers);
    check_slots(table, markers);
    if (told_of(table).empty() && table.text().find("\t\n") == std::string::npos) {
        check_round_trip(table, markers, files);
    }
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    vort::fuzz::run(vort::fuzz::text_of(data, size));
    return 0;
}
