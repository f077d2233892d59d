#include "common/parameter_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "common/characters.h"
#include "common/number_text.h"
#include "common/odd_files.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "common/text_input.h"

namespace vort {

namespace {

constexpr int kWarnAboveLines = 15;
constexpr int kMostEntries = 20;
constexpr std::size_t kNameLength = 51;
constexpr std::size_t kTextLength = 99;

constexpr std::string_view kDefaultFile =
    "Inputfile\t\t\t\t\tdat1.txt\n"
    "Head\t\t\t\t\t\t\t1\n"
    "Recorder_num\t\t\t\t\t1\n"
    "Sample_size\t\t\t\t\t1033\n"
    "Number_of_markers\t\t\t152\n"
    "Symbol_of_missing_Gentype\t-1\n"
    "Max_retain\t\t\t\t\t10\n"
    "FDR_cutoff_for_candidate_locus_combinations\t0.75\n"
    "Number_of_permutation\t\t200\n"
    "How_many_imputation_to_deal_with_missing\t\t\t10\n"
    "Best_m\t\t\t\t\t\t100\n";

// A name means the first row whose letters it has; positions count from 1, 0 tests nothing.
struct NameRule {
    char second;
    std::size_t position;
    char letter;
    Parameter parameter;
};

constexpr std::array<NameRule, 13> kNameRules = {{
    {'a', 3, 'm', Parameter::kSampleSize},
    {'a', 3, 'x', Parameter::kMaxRetain},
    {'a', 0, 0, Parameter::kIgnored},
    {'e', 3, 'a', Parameter::kHead},
    {'e', 3, 'c', Parameter::kRecorder},
    {'e', 0, 0, Parameter::kBestM},
    {'n', 0, 0, Parameter::kInputFile},
    {'o', 0, 0, Parameter::kImputations},
    {'r', 0, 0, Parameter::kReplicates},
    {'u', 11, 'p', Parameter::kPermutations},
    {'u', 0, 0, Parameter::kMarkers},
    {'y', 0, 0, Parameter::kMissingSymbol},
    {'D', 0, 0, Parameter::kFdrCutoff},
}};

// 1-based; NUL past the name's end.
char letter_at(std::string_view name, std::size_t position) {
    return position <= name.size() ? name[position - 1] : '\0';
}

// Line feeds that follow something other than a line feed, and a last line without one.
int count_lines(std::string_view text) {
    int lines = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\n' && text[i - 1] != '\n') ++lines;
    }
    if (!text.empty() && text.back() != '\n') ++lines;
    return lines;
}

// Takes words and numbers off the front of the file's text.
class EntryReader {
  public:
    explicit EntryReader(std::string_view text) : text_(text) {}

    ParameterEntry next() {
        ParameterEntry entry;
        entry.name = next_word();
        if (!entry.name.empty()) entry.line = line_;
        next_ += entry.name.size();
        entry.is_text = letter_at(entry.name, 1) == 'I' || letter_at(entry.name, 2) == 'y';
        entry.word = next_word();
        if (entry.is_text) {
            next_ += entry.word.size();
            entry.text = entry.word.substr(0, kTextLength);
        } else {
            read_number(entry);
        }
        entry.name.resize(std::min(entry.name.size(), kNameLength));
        return entry;
    }

  private:
    std::string next_word() {
        while (next_ < text_.size() && is_space(text_[next_])) {
            if (text_[next_++] == '\n') ++line_;
        }
        std::size_t end = next_;
        while (end < text_.size() && !is_space(text_[end])) ++end;
        return std::string(text_.substr(next_, end - next_));
    }

    // The longest part of the word that is a number; the rest stays to be the next word.
    void read_number(ParameterEntry& entry) {
        char* end = nullptr;
        const float value = std::strtof(entry.word.c_str(), &end);
        const auto used = static_cast<std::size_t>(end - entry.word.c_str());
        if (used > 0) entry.value = value;
        entry.whole_word = used > 0 && used == entry.word.size();
        next_ += used;
    }

    std::string_view text_;
    std::size_t next_ = 0;
    long line_ = 1;
};

// A file in its place that was not begun by a run that was killed may be an input.
void require_free_or_begun(const std::string& path, const char* missing, Diagnostics& diagnostics) {
    std::error_code absent;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, absent))) return;
    if (std::string_view(kDefaultFile).starts_with(TextInput(path).rest())) return;
    diagnostics.say("files in the place of others", path, 0,
                    "would be replaced on the way to default parameters; give it another name");
    stop(missing + std::string("Don't open parameter file\n"));
}

// Never in the place of what is there but cannot be opened, as a link to nowhere; and as a whole,
// since the next run takes what it finds.
void write_default_file(Diagnostics& diagnostics) {
    constexpr const char* kMissing = "Don't find parameter file use default value\n";
    require_free_or_begun(unfinished_name(std::string(kParameterFileName)), kMissing, diagnostics);
    WholeFile file(std::string(kParameterFileName), diagnostics);
    if (!file.is_open()) stop(kMissing + std::string("Don't open parameter file\n"));
    if (!file.write(kDefaultFile)) stop(kMissing, 1);
    if (!file.take_free_name()) stop(kMissing + std::string("Don't open parameter file\n"));
}

[[noreturn]] void stop_unread(int error, Diagnostics& diagnostics) {
    diagnostics.say("files that could not be read", kParameterFileName, 0,
                    "could not be read (" + reason_text(error) + "); it is left as it is");
    stop("", 1);
}

}  // namespace

ParameterFile read_parameter_file(Diagnostics& diagnostics) {
    tell_pipe(kParameterFileName, diagnostics);
    TextInput input{std::string(kParameterFileName)};
    if (!input.is_open()) {
        const int error = input.open_error();
        if (error != ENOENT && error != EISDIR) stop_unread(error, diagnostics);
        ParameterFile file;
        file.found = false;
        write_default_file(diagnostics);
        return file;
    }
    tell_byte_order_mark(input, kParameterFileName, diagnostics);
    std::string text = input.rest();
    if (input.read_error() != 0) stop_unread(input.read_error(), diagnostics);
    return parse_parameters(std::move(text));
}

ParameterFile parse_parameters(std::string text) {
    ParameterFile file;
    file.text = std::move(text);
    file.line_count = count_lines(file.text);
    const int most = std::min(file.line_count, kMostEntries);
    EntryReader reader(file.text);
    while (static_cast<int>(file.entries.size()) < most) {
        file.entries.push_back(reader.next());
        if (is_letter(letter_at(file.entries.back().name, 1))) ++file.letter_count;
    }
    file.unread = reader.next();
    return file;
}

void print_warnings(const ParameterFile& file, Transcript& transcript) {
    if (!file.found) {
        transcript << "Don't find parameter file use default value\n";
        return;
    }
    if (file.line_count > kWarnAboveLines) {
        transcript << "There are too many line in parameter file to deal i=" << file.line_count
                   << "\n               please delete those line for not use and line number "
                      "don't more than 15.\n";
    }
    for (const ParameterEntry& entry : file.dispatched()) {
        if (parameter_of(entry.name) != Parameter::kUnknown) continue;
        transcript << "Find error,needless parameter! parametername=" << entry.name
                   << " parametervalue=" << fixed(static_cast<double>(entry.value))
                   << " k=" << file.letter_count << '\n';
    }
}

Parameter parameter_of(std::string_view name) {
    for (const NameRule& rule : kNameRules) {
        if (letter_at(name, 2) != rule.second) continue;
        if (rule.position == 0 || letter_at(name, rule.position) == rule.letter) {
            return rule.parameter;
        }
    }
    return Parameter::kUnknown;
}

int cut_to_int(float value) {
    return truncated(static_cast<double>(value));
}

int rounded_to_int(float value) {
    return truncated(std::round(static_cast<double>(value)));
}

}  // namespace vort
