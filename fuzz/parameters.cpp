// "parameter.txt": parsed, warned of, diagnosed, and taken by the stages.
#include <algorithm>
#include <sstream>
#include <string>

#include "common/settings.h"
#include "support/harness.h"

namespace vort::fuzz {

namespace {

void check_entries(const ParameterFile& file) {
    require(file.entries.size() <= 20, "at most 20 entries are read");
    require(file.letter_count >= 0 && file.dispatched().size() <= file.entries.size(),
            "what counts was read");
    require(file.line_count >= 0 && static_cast<std::size_t>(file.line_count) <= file.text.size(),
            "a line has a character");
    const auto lines = 1 + std::ranges::count(file.text, '\n');
    for (const ParameterEntry& entry : file.entries) {
        require(entry.name.size() <= 51 && entry.text.size() <= 99, "texts are cut");
        require(entry.line >= 0 && entry.line <= lines, "an entry stands in a line of the file");
        require(entry.name.empty() == (entry.line == 0), "an entry without a name has no line");
    }
}

void check_settings(const ParameterFile& file) {
    const Settings settings = settings_of(file);
    const double cutoff = settings.builder.fdr_cutoff;
    require(cutoff > 0 && cutoff <= 1, "the cutoff is a share");
    require(settings.builder.usable_markers() >= 0, "no count is negative");
    require(settings.screening.input.size() <= 99, "the data set's name is cut");
    accepts([&] { check_best_markers(settings.screening); });
}

std::string told_of(const ParameterFile& file) {
    std::ostringstream told;
    Diagnostics diagnostics(told);
    diagnose_parameters(file, diagnostics);
    diagnostics.finish();
    return told.str();
}

}  // namespace

}  // namespace vort::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vort;
    const ParameterFile file = parse_parameters(std::string(fuzz::text_of(data, size)));
    fuzz::check_entries(file);
    fuzz::check_settings(file);
    Transcript warnings(true);
    print_warnings(file, warnings);
    const std::string told = fuzz::told_of(file);
    fuzz::require(told.empty() || told.back() == '\n', "what is told is lines");
    return 0;
}
