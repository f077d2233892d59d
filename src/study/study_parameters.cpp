#include "study/study_parameters.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <sstream>

#include "common/input_error.h"
#include "study/word_lines.h"

namespace vort {

namespace {

struct Rule {
    Parameter parameter;
    const char* name;
    bool required;
    bool whole;
    double least, most;
    const char* expected;
};

constexpr double kMost = std::numeric_limits<int>::max();

constexpr std::array<Rule, 8> kRules = {{
    {Parameter::kHead, "Head", false, true, 0, 1, "0 or 1"},
    {Parameter::kRecorder, "Recorder_num", false, true, 0, 1, "0 or 1"},
    {Parameter::kSampleSize, "Sample_size", true, true, 1, kMost, "a whole number from 1 on"},
    {Parameter::kMarkers, "Number_of_markers", true, true, 1, kMost, "a whole number from 1 on"},
    {Parameter::kMaxRetain, "Max_retain", true, true, 0, kMost, "a whole number from 0 on"},
    {Parameter::kFdrCutoff, "FDR_cutoff_for_candidate_locus_combinations", true, false,
     std::numeric_limits<double>::min(), 1, "a number above 0 and at most 1"},
    {Parameter::kPermutations, "Number_of_permutation", true, true, 0, kMost,
     "a whole number from 0 on"},
    {Parameter::kBestM, "Best_m", true, true, 1, kMost, "a whole number from 1 on"},
}};

bool fits(const Rule& rule, const ParameterEntry& entry) {
    const auto value = static_cast<double>(entry.value);
    if (entry.is_text || !entry.whole_word || !(value >= rule.least && value <= rule.most)) {
        return false;
    }
    return !rule.whole ||
           (value == std::trunc(value) && value == std::strtod(entry.word.c_str(), nullptr));
}

void check_rule(const Rule& rule, const ParameterFile& file, const std::string& path) {
    bool given = false;
    for (const ParameterEntry& entry : file.dispatched()) {
        if (parameter_of(entry.name) != rule.parameter) continue;
        given = true;
        if (fits(rule, entry)) continue;
        input_error(path, entry.line,
                    entry.name + ' ' + entry.word + "; " + rule.expected + " expected");
    }
    if (given || !rule.required) return;
    input_error(path, 0, std::string(rule.name) + " is not given; " + rule.expected + " expected");
}

// A study from elsewhere has no say in which other files are read.
bool is_within(const std::filesystem::path& name) {
    return !name.is_absolute() && std::ranges::find(name, "..") == name.end();
}

void check_input_file(const ParameterFile& file, const std::string& path) {
    std::filesystem::path name;
    for (const ParameterEntry& entry : file.dispatched()) {
        if (parameter_of(entry.name) == Parameter::kReplicates) {
            input_error(path, entry.line,
                        entry.name +
                            " would be taken as Number_of_permutation by the screening "
                            "alone; that name expected; correct it");
        }
        if (parameter_of(entry.name) != Parameter::kInputFile) continue;
        name = entry.text;
        if (!is_within(name)) {
            input_error(path, entry.line,
                        "Inputfile " + entry.text +
                            " is outside of the study directory; a file in it expected");
        }
    }
    if (name.empty()) input_error(path, 0, "Inputfile is not given; the data set's name expected");
}

// What else the bare program would say of the file.
void note_oddities(const ParameterFile& file, Study& study) {
    std::ostringstream told;
    {
        Diagnostics diagnostics(told);
        diagnose_parameters(file, diagnostics);
    }
    std::istringstream lines(told.str());
    for (std::string line; std::getline(lines, line);) study.notes.push_back(line + '.');
}

}  // namespace

Settings read_study_parameters(const std::string& path, Study& study) {
    std::string text = read_text(path);
    if (text.starts_with("\xEF\xBB\xBF")) {
        input_error(path, 1, "begins with a byte order mark; save it as UTF-8 without one");
    }
    ParameterFile file = parse_parameters(std::move(text));
    check_input_file(file, path);
    for (const Rule& rule : kRules) check_rule(rule, file, path);
    note_oddities(file, study);
    study.inputs.push_back({"parameters", path});
    Settings settings = settings_of(std::move(file));
    study.parameters = StudyParameters{settings.builder.permutations, settings.builder.markers,
                                       settings.builder.max_retain, settings.builder.fdr_cutoff};
    return settings;
}

}  // namespace vort
