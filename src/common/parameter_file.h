// "parameter.txt": the one place where a run is described.
//
// The file is a list of entries, a name and a value each, separated by white space:
//
//     Sample_size        1033
//     Inputfile          dat1.txt
//
// What stands here is the reading, and the rule that tells from a few letters of a name which
// setting it means. Only the second letter, and for some names the third or the eleventh, count, so
// misspelt names are understood, or misunderstood, by the same rule; diagnose_parameters says on
// standard error where that happened. What the stages take from it: common/settings.h.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/diagnostics.h"
#include "common/transcript.h"

namespace vort {

enum class Parameter {
    kInputFile,
    kHead,
    kRecorder,
    kSampleSize,
    kMarkers,
    kMissingSymbol,
    kMaxRetain,
    kFdrCutoff,
    kPermutations,
    kImputations,
    kBestM,
    kReplicates,  // 'r' in second place; no name of the default file leads here
    kIgnored,     // understood by no reader, and passed over without a word
    kUnknown,
};

struct ParameterEntry {
    std::string name;    // cut to 51 characters
    std::string text;    // the value of a text entry, cut to 99 characters, else empty
    float value = 0.0F;  // the value of a numeric entry, 0 where it is no number
    std::string word;    // the value as it stands in the file
    bool is_text = false;
    bool whole_word = true;  // false where only a part of the word, or nothing, was a number
    long line = 0;           // 1-based line of the name, 0 past the end of the file
};

struct ParameterFile {
    std::string text;                     // the whole file
    bool found = true;                    // false where there was none, and one was written
    int line_count = 0;                   // lines that are not empty
    std::vector<ParameterEntry> entries;  // as read, at most 20
    int letter_count = 0;                 // entries whose name starts with a letter
    ParameterEntry unread;                // the first entry that is not read; no name: none

    // The entries that count: the first `letter_count` ones, whatever their names.
    std::span<const ParameterEntry> dispatched() const {
        return std::span(entries).first(static_cast<std::size_t>(letter_count));
    }
};

constexpr std::string_view kParameterFileName = "parameter.txt";

// Reads the file of that name. Where there is none, writes one with the default lines, and
// `found` is false: the built-in defaults then stay in force. A file that is there but cannot be
// read is left alone and stops the run, as does a default file that cannot be written.
ParameterFile read_parameter_file(Diagnostics& diagnostics);

ParameterFile parse_parameters(std::string text);

// The console lines of one stage's look at the file: its absence, too many lines, names that mean
// no setting.
void print_warnings(const ParameterFile& file, Transcript& transcript);

// Which setting a name means; see the table in the source.
Parameter parameter_of(std::string_view name);

// Standard error: every entry that is ignored, cut or guessed at.
void diagnose_parameters(const ParameterFile& file, Diagnostics& diagnostics);

// A value cut towards zero, and one rounded to nearest with halves away from zero; INT_MIN where
// it does not fit an int.
int cut_to_int(float value);
int rounded_to_int(float value);

}  // namespace vort
