#include "common/parameter_file.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <string>

#include "common/number_text.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::read_file;
using vort::testing::said_of;
using vort::testing::status_zero;
using vort::testing::TemporaryFolder;
using vort::testing::write_file;

class ParameterFileTest : public ::testing::Test {
  protected:
    static ParameterFile read(const std::string& text) {
        write_file("parameter.txt", text);
        return read_parameter_file().value_or(ParameterFile());
    }

  private:
    TemporaryFolder folder_;
};

// "Head=1@1" is a number in line 1, "Head='x'@1" a text; '?' marks a value not taken whole.
std::string shown(const ParameterFile& file) {
    std::string text = std::to_string(file.line_count) + " lines:";
    for (const ParameterEntry& entry : file.entries) {
        const auto value = static_cast<double>(entry.value);
        text += ' ' + entry.name + '=';
        text += entry.is_text ? "'" + entry.text + "'" : std::string(general(value).view());
        text += (entry.whole_word ? "@" : "?@") + std::to_string(entry.line);
    }
    return text + "; " + std::to_string(file.letter_count);
}

TEST_F(ParameterFileTest, Entries) {
    const struct {
        std::string text;
        std::string expected;
    } rows[] = {
        {"", "0 lines:; 0"},
        {"\n\n\n", "0 lines:; 0"},
        {"Head 1", "1 lines: Head=1@1; 1"},
        {"\n\nHead 1\n\n\nBest_m -5.25\n", "2 lines: Head=1@3 Best_m=-5.25@6; 2"},
        {"Head\t1\r\n\r\n", "2 lines: Head=1@1 =0?@0; 1"},
        {"Head\n1\nBest_m\n5\n", "4 lines: Head=1@1 Best_m=5@3 =0?@0 =0?@0; 2"},
        {"Head 1 Best_m 5\n", "1 lines: Head=1@1; 1"},
        {"Inputfile\ta.txt\nSymbol -1\ncy 7x\n",
         "3 lines: Inputfile='a.txt'@1 Symbol='-1'@2 cy='7x'@3; 3"},
        {"Inputfile", "1 lines: Inputfile=''@1; 1"},
        // The rest of a word becomes the next name, and a word that is no number is read again.
        {"Sample_size 12abc 7\nHead 1\n", "2 lines: Sample_size=12?@1 abc=7@1; 2"},
        {"Sample_size abc 7\nHead 1\n", "2 lines: Sample_size=0?@1 abc=7@1; 2"},
        {"Head x\nBest_m 3\nMax 4\n", "3 lines: Head=0?@1 x=0?@1 Best_m=3@2; 3"},
        {"Head 1e1e\nBest 3", "2 lines: Head=10?@1 e=0?@1; 2"},
        {"Head 0x1F\nBest_m -inf\nMax +.5e+1\n", "3 lines: Head=31@1 Best_m=-inf@2 Max=5@3; 3"},
        // Names that start with no letter take a place, but not in the count.
        {"1x 5\nHead 1\n_m 3\nBest_m 3\n", "4 lines: 1x=5@1 Head=1@2 _m=3@3 Best_m=3@4; 2"},
        {std::string(60, 'a') + " 1\nI" + std::string(60, 'b') + ' ' + std::string(120, 'c'),
         "2 lines: " + std::string(51, 'a') + "=1@1 I" + std::string(50, 'b') + "='" +
             std::string(99, 'c') + "'@2; 2"},
    };
    for (const auto& row : rows) EXPECT_EQ(shown(read(row.text)), row.expected) << row.text;
    EXPECT_EQ(read("1x 5\nHead 1\n_m 3\nBest_m 3\n").dispatched().back().name, "Head");
}

TEST_F(ParameterFileTest, AtMostTwentyEntriesAndAWarningAboveFifteenLines) {
    std::string text;
    for (int line = 1; line <= 25; ++line) {
        text += "Best_m " + std::to_string(line) + '\n';
        const ConsoleCapture console;
        const ParameterFile file = read(text);
        EXPECT_EQ(file.line_count, line);
        EXPECT_EQ(file.letter_count, std::min(line, 20));
        EXPECT_EQ(file.dispatched().size(), std::min<std::size_t>(line, 20));
        EXPECT_EQ(console.text(),
                  line <= 15 ? ""
                             : "There are too many line in parameter file to deal i=" +
                                   std::to_string(line) +
                                   "\n               please delete those line for not use and "
                                   "line number don't more than 15.\n");
    }
}

TEST_F(ParameterFileTest, AMissingFileIsWritten) {
    const ConsoleCapture console;
    EXPECT_EQ(read_parameter_file(), std::nullopt);
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\n");
    EXPECT_EQ(read_file("parameter.txt"), R"(Inputfile					dat1.txt
Head							1
Recorder_num					1
Sample_size					1033
Number_of_markers			152
Symbol_of_missing_Gentype	-1
Max_retain					10
FDR_cutoff_for_candidate_locus_combinations	0.75
Number_of_permutation		200
How_many_imputation_to_deal_with_missing			10
Best_m						100
)");
    EXPECT_EQ(read_parameter_file()->letter_count, 11);
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\n");
}

TEST_F(ParameterFileTest, EndsWhereNoFileCanBeWritten) {
    std::filesystem::create_directory("parameter.txt");
    EXPECT_EXIT((console_to_stderr(), read_parameter_file()), status_zero(),
                "Don't find parameter file use default value\n(.*\n)?Don't open parameter file\n");
}

TEST(ParameterOf, LooksAtAFewLettersOnly) {
    const struct {
        const char* name;
        Parameter expected;
    } rows[] = {
        {"Inputfile", Parameter::kInputFile},
        {"Head", Parameter::kHead},
        {"Recorder_num", Parameter::kRecorder},
        {"Sample_size", Parameter::kSampleSize},
        {"Number_of_markers", Parameter::kMarkers},
        {"Symbol_of_missing_Gentype", Parameter::kMissingSymbol},
        {"Max_retain", Parameter::kMaxRetain},
        {"FDR_cutoff_for_candidate_locus_combinations", Parameter::kFdrCutoff},
        {"Number_of_permutation", Parameter::kPermutations},
        {"How_many_imputation_to_deal_with_missing", Parameter::kImputations},
        {"Best_m", Parameter::kBestM},
        {"Best_marker_count", Parameter::kBestM},
        {"Permarker_no", Parameter::kBestM},
        {"xecx", Parameter::kRecorder},
        {"_e", Parameter::kBestM},
        {"camel", Parameter::kSampleSize},
        {"Ma", Parameter::kIgnored},
        {"Marker_num", Parameter::kIgnored},
        {"Nu", Parameter::kMarkers},
        {"Number_of_Permutation", Parameter::kMarkers},
        {"Num_of_permutations", Parameter::kMarkers},
        {"1u345678901p", Parameter::kMarkers},
        {"1u34567890p", Parameter::kPermutations},
        {"1u34567890", Parameter::kMarkers},
        {"true", Parameter::kReplicates},
        {"fdr_cutoff", Parameter::kUnknown},
        {"SAMPLE_SIZE", Parameter::kUnknown},
        {"a", Parameter::kUnknown},
        {"", Parameter::kUnknown},
    };
    for (const auto& row : rows) EXPECT_EQ(parameter_of(row.name), row.expected) << row.name;
}

TEST(ParameterNumbers, AreCutOrRounded) {
    const struct {
        float value;
        int cut;
        int rounded;
    } rows[] = {
        {99.9F, 99, 100},         {2.5F, 2, 3},  {-2.5F, -2, -3},
        {0.49999997F, 0, 0},      {-0.4F, 0, 0}, {16777217.F, 16777216, 16777216},
        {3e9F, INT_MIN, INT_MIN},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(cut_to_int(row.value), row.cut) << row.value;
        EXPECT_EQ(rounded_to_int(row.value), row.rounded) << row.value;
    }
}

TEST_F(ParameterFileTest, NeedlessParameterIsShownWithItsNumber) {
    const ConsoleCapture console;
    const ParameterFile file = read("Odd_name 2.75\n");
    print_needless_parameter(file.entries[0], 3);
    EXPECT_EQ(console.text(),
              "Find error,needless parameter! parametername=Odd_name parametervalue=2.750000 "
              "k=3\n");
}

TEST_F(ParameterFileTest, NothingIsIgnoredOrGuessedInSilence) {
    const std::string longest(100, 'f');
    const struct {
        std::string text;
        std::string expected;  // without the file name
    } rows[] = {
        {"Head 1\nBest_m 0\nMax_retain 0\nNumber_of_permutation 0\nSample_size 1\n", ""},
        {"Inputfile a\nFDR_cutoff_for_candidate_locus_combinations 1\nSymbol_of_missing_Gentype x",
         ""},
        {"Odd 5\n", ""},  // that warning is on the console
        {"Sample_size abc\n",
         "1: Sample_size: a number was expected, not \"abc\"; what is no number of it is read as "
         "the next name"},
        {"Sample_size 12abc\n",
         "1: Sample_size: a number was expected, not \"12abc\"; what is no number of it is read as "
         "the next name"},
        {"\nSample_size", "2: Sample_size: a number was expected; 0 is used"},
        {"Best_m 9.5\n",
         "1: Best_m: a whole number was expected, not 9.5; it is cut, and rounded by the builder "
         "of base learners"},
        {"Best_m nan\n",
         "1: Best_m: a whole number was expected, not nan; it is cut, and rounded by the builder "
         "of base learners"},
        {"Head 1\n\nHead 1\n", "3: Head: given before in line 1; the last value is used"},
        {"Sample_size 0\n", "1: Sample_size: at least 1 was expected, not 0"},
        {"Number_of_markers 0\n", "1: Number_of_markers: at least 1 was expected, not 0"},
        {"Number_of_permutation -1\n", "1: Number_of_permutation: at least 0 was expected, not -1"},
        {"Max_retain -3\n", "1: Max_retain: at least 0 was expected, not -3"},
        {"Best_m 1e10\n", "1: Best_m: 1e10 does not fit a whole number"},
        {"FDR_cutoff_for_candidate_locus_combinations 1.5\n",
         "1: FDR_cutoff_for_candidate_locus_combinations: above 0 and at most 1 was expected, not "
         "1.5; 0.75 is used"},
        {"Unknown_key 5\n",
         "1: Unknown_key: no such parameter; its letters make it be taken as Inputfile"},
        {"Samples 5\n",
         "1: Samples: no such parameter; its letters make it be taken as "
         "Sample_size"},
        {"Marker_num 5\n", "1: Marker_num: no such parameter; it is ignored"},
        {"Trials 5\n",
         "1: Trials: no such parameter; its letters make it be taken as Number_of_permutation"},
        {"Inputfile", "1: Inputfile: a value was expected"},
        {"Inputfile " + longest, "1: Inputfile: at most 99 characters are kept"},
        {"9 1\nBest_m 5\n",
         "2: Best_m: ignored: for each name that starts with no letter the last entry is left out"},
    };
    for (const auto& row : rows) {
        DiagnosticsCapture diagnostics;
        diagnose_parameters(read(row.text));
        const std::string line = row.expected.empty() ? "" : row.expected + '\n';
        EXPECT_EQ(diagnostics.take(), said_of("parameter.txt", line)) << row.text;
    }
}

TEST_F(ParameterFileTest, LinesPastTheTwentiethAreTold) {
    const ConsoleCapture console;
    DiagnosticsCapture diagnostics;
    std::string text = "Head 1\n";
    for (int line = 2; line <= 22; ++line) text += "Odd 1\n";
    diagnose_parameters(read(text));
    EXPECT_EQ(diagnostics.take(), "parameter.txt: 22 lines, of which only the first 20 are read\n");
}

}  // namespace
}  // namespace vort
