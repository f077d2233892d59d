// What the readers of "parameter.txt" pass over in silence, said on standard error.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

#include "common/diagnostics.h"
#include "common/parameter_file.h"

namespace vort {

namespace {

enum class Expected { kText, kWholeNumber, kFlag, kCount, kPositiveCount, kShare };

struct KnownParameter {
    Parameter parameter;
    std::string_view name;
    Expected expected;
    std::string_view default_value;  // what is used where it is missing; empty: no word about it
};

constexpr std::array<KnownParameter, 11> kKnownParameters = {{
    {Parameter::kInputFile, "Inputfile", Expected::kText, "there is no data set"},
    {Parameter::kHead, "Head", Expected::kFlag, ""},
    {Parameter::kRecorder, "Recorder_num", Expected::kFlag, ""},
    {Parameter::kSampleSize, "Sample_size", Expected::kPositiveCount,
     "547 are screened, 400 modelled"},
    {Parameter::kMarkers, "Number_of_markers", Expected::kPositiveCount, "541325 is used"},
    {Parameter::kMissingSymbol, "Symbol_of_missing_Gentype", Expected::kText, ""},
    {Parameter::kMaxRetain, "Max_retain", Expected::kCount, "1 is used"},
    {Parameter::kFdrCutoff, "FDR_cutoff_for_candidate_locus_combinations", Expected::kShare, ""},
    {Parameter::kPermutations, "Number_of_permutation", Expected::kCount,
     "100 are screened, none modelled"},
    {Parameter::kImputations, "How_many_imputation_to_deal_with_missing", Expected::kWholeNumber,
     ""},
    {Parameter::kBestM, "Best_m", Expected::kCount, "20 is used"},
}};

const KnownParameter* known(Parameter parameter) {
    for (const KnownParameter& row : kKnownParameters) {
        if (row.parameter == parameter) return &row;
    }
    return nullptr;
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

// What is wrong with an entry, told.
class ParameterCheck {
  public:
    explicit ParameterCheck(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

    void check_entry(const ParameterEntry& entry);
    void check_repeated(std::span<const ParameterEntry> entries, std::size_t i);
    void check_missing(std::span<const ParameterEntry> entries);
    void say(std::string_view kind, const ParameterEntry& entry, const std::string& text) {
        diagnostics_.say(kind, kParameterFileName, entry.line, entry.name + ": " + text);
    }

  private:
    void check_name(const ParameterEntry& entry, const KnownParameter& row);
    void check_number(const ParameterEntry& entry);
    void check_range(const ParameterEntry& entry, Expected expected);
    void check_text(const ParameterEntry& entry);

    Diagnostics& diagnostics_;
};

void ParameterCheck::check_name(const ParameterEntry& entry, const KnownParameter& row) {
    if (entry.name == row.name) return;
    say("unfamiliar parameter names", entry,
        "no such parameter; its letters make it be taken as " + std::string(row.name));
}

void ParameterCheck::check_number(const ParameterEntry& entry) {
    if (entry.whole_word) return;
    if (entry.word.empty()) {
        say("parameter values that are no number", entry,
            "a number was expected; it is taken as 0");
    } else {
        say("parameter values that are no number", entry,
            "a number was expected, not " + quoted(entry.word) +
                "; what is no number of it is read as the next name");
    }
}

void ParameterCheck::check_range(const ParameterEntry& entry, Expected expected) {
    const auto value = static_cast<double>(entry.value);
    const bool whole = value == std::trunc(value);
    if (expected == Expected::kShare) {
        if (!(value > 0.0 && value <= 1.0)) {
            say("parameter values out of range", entry,
                "above 0 and at most 1 was expected, not " + entry.word + "; 0.75 is used");
        }
    } else if (!(value >= -2147483648.0 && value < 2147483648.0)) {
        say("parameter values out of range", entry,
            entry.word + " does not fit a whole number; -2147483648 is used");
    } else if (!whole) {
        say("parameter values with a fraction", entry,
            "a whole number was expected, not " + entry.word +
                "; it is cut, and rounded by the builder of base learners");
    } else if (std::strtod(entry.word.c_str(), nullptr) != value) {
        say("parameter values changed", entry,
            entry.word + " has too many digits; " + std::to_string(static_cast<long>(value)) +
                " is used");
    } else if (expected == Expected::kFlag && value != 0.0 && value != 1.0) {
        say("parameter values out of range", entry,
            "0 or 1 was expected, not " + entry.word + "; 0 is used");
    } else if (expected == Expected::kPositiveCount && value < 1.0) {
        say("sizes out of range", entry, "at least 1 was expected, not " + entry.word);
    } else if (expected == Expected::kCount && value < 0.0) {
        say("sizes out of range", entry, "at least 0 was expected, not " + entry.word);
    }
}

void ParameterCheck::check_text(const ParameterEntry& entry) {
    if (entry.word.empty()) say("missing parameter values", entry, "a value was expected");
    if (entry.text.size() < entry.word.size()) {
        say("parameter values cut", entry,
            "at most " + std::to_string(entry.text.size()) + " characters are kept");
    }
}

void ParameterCheck::check_entry(const ParameterEntry& entry) {
    const KnownParameter* row = known(parameter_of(entry.name));
    if (row == nullptr) {
        if (entry.is_text) return;
        check_number(entry);
        const Parameter parameter = parameter_of(entry.name);
        if (parameter != Parameter::kUnknown) {
            say("unfamiliar parameter names", entry,
                parameter == Parameter::kIgnored
                    ? "no such parameter; it is ignored"
                    : "no such parameter; its letters make it be taken as Number_of_permutation");
        }
        return;
    }
    check_name(entry, *row);
    if (entry.is_text && row->expected != Expected::kText) {
        say("parameter values that are no number", entry,
            "a name that starts with I, or has y in second place, takes a text; 0 is used");
    } else if (entry.is_text) {
        check_text(entry);
    } else {
        check_number(entry);
        if (entry.whole_word) check_range(entry, row->expected);
    }
}

// The screening takes its permutations from either of two kinds of names.
Parameter setting_of(std::string_view name) {
    const Parameter parameter = parameter_of(name);
    return parameter == Parameter::kReplicates ? Parameter::kPermutations : parameter;
}

void ParameterCheck::check_repeated(std::span<const ParameterEntry> entries, std::size_t i) {
    const Parameter parameter = setting_of(entries[i].name);
    if (known(parameter) == nullptr) return;
    for (std::size_t before = 0; before < i; ++before) {
        if (setting_of(entries[before].name) == parameter) {
            say("parameters given twice", entries[i],
                "given before in line " + std::to_string(entries[before].line) +
                    "; the last value is used");
            return;
        }
    }
}

// What decides about a run and is not given has a default that hardly fits it.
void ParameterCheck::check_missing(std::span<const ParameterEntry> entries) {
    for (const KnownParameter& row : kKnownParameters) {
        const auto gives = [&](const ParameterEntry& entry) {
            return setting_of(entry.name) == row.parameter;
        };
        if (row.default_value.empty() || std::any_of(entries.begin(), entries.end(), gives)) {
            continue;
        }
        diagnostics_.say(
            "parameters missing", kParameterFileName, 0,
            std::string(row.name) + " is not given; " + std::string(row.default_value));
    }
}

}  // namespace

void diagnose_parameters(const ParameterFile& file, Diagnostics& diagnostics) {
    ParameterCheck check(diagnostics);
    const std::span<const ParameterEntry> used = file.dispatched();
    for (std::size_t i = 0; i < used.size(); ++i) {
        check.check_entry(used[i]);
        check.check_repeated(used, i);
    }
    for (std::size_t i = used.size(); i < file.entries.size(); ++i) {
        if (file.entries[i].name.empty()) continue;
        check.say("parameters ignored", file.entries[i],
                  "ignored: for each name that starts with no letter the last entry is left out");
    }
    if (!file.unread.name.empty()) {
        check.say("parameters ignored", file.unread,
                  "ignored from here on: " + std::to_string(file.line_count) +
                      " lines, so the first " + std::to_string(file.entries.size()) +
                      " names and values are read");
    }
    check.check_missing(used);
}

}  // namespace vort
