#include "common/parameter_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include "common/number_text.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

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
    const std::pair<std::string, std::string> rows[] = {
        {"", "0 lines:; 0"},
        {"\n\nHead 1\n\n\nBest_m -5.25\n", "2 lines: Head=1@3 Best_m=-5.25@6; 2"},
        {"Head\t1\r\n\r\n", "2 lines: Head=1@1 =0?@0; 1"},
        {"Head\n1\nBest_m\n5\n", "4 lines: Head=1@1 Best_m=5@3 =0?@0 =0?@0; 2"},
        {"Head 1 Best_m 5\n", "1 lines: Head=1@1; 1"},
        {"Inputfile\ta.txt\nSymbol -1\ncy 7x\n",
         "3 lines: Inputfile='a.txt'@1 Symbol='-1'@2 cy='7x'@3; 3"},
        // The rest of a word becomes the next name, and a word that is no number is read again.
        {"Sample_size 12abc 7\nHead 1\n", "2 lines: Sample_size=12?@1 abc=7@1; 2"},
        {"Head 1e1e\nBest 3", "2 lines: Head=10?@1 e=0?@1; 2"},
        {"Head 0x1F\nBest_m -inf\nMax +.5e+1\n", "3 lines: Head=31@1 Best_m=-inf@2 Max=5@3; 3"},
        // Names that start with no letter take a place, but not in the count.
        {"1x 5\nHead 1\n_m 3\nBest_m 3\n", "4 lines: 1x=5@1 Head=1@2 _m=3@3 Best_m=3@4; 2"},
        {std::string(60, 'a') + " 1\nI" + std::string(60, 'b') + ' ' + std::string(120, 'c'),
         "2 lines: " + std::string(51, 'a') + "=1@1 I" + std::string(50, 'b') + "='" +
             std::string(99, 'c') + "'@2; 2"}};
    for (const auto& [text, expected] : rows) EXPECT_EQ(shown(read(text)), expected) << text;
    EXPECT_EQ(read("1x 5\nHead 1\n_m 3\nBest_m 3\n").dispatched().back().name, "Head");
}

TEST_F(ParameterFileTest, AtMostTwentyEntriesAndAWarningAboveFifteenLines) {
    std::string text;
    for (int line = 1; line <= 22; ++line) {
        text += "Odd 1\n";
        const ConsoleCapture console;
        const ParameterFile file = read(text);
        EXPECT_EQ(file.line_count, line);
        EXPECT_EQ(file.dispatched().size(), std::min(line, 20));
        const std::string warning =
            "There are too many line in parameter file to deal i=" + std::to_string(line) +
            "\n               please delete those "
            "line for not use and line number don't more than 15.\n";
        EXPECT_EQ(console.text(), line <= 15 ? "" : warning);
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
}

TEST_F(ParameterFileTest, EndsWhereNoFileCanBeWritten) {
    std::filesystem::create_directory("parameter.txt");
    EXPECT_EXIT((console_to_stderr(), read_parameter_file()), status_zero(),
                "Don't find parameter file use default value\n(.*\n)?Don't open parameter file\n");
}

TEST(ParameterOf, LooksAtAFewLettersOnly) {
    using enum Parameter;
    const std::pair<Parameter, const char*> rows[] = {
        {kInputFile, "Inputfile"},
        {kHead, "Head"},
        {kRecorder, "Recorder_num xecx"},
        {kSampleSize, "Sample_size camel"},
        {kMarkers, "Number_of_markers Nu Number_of_Permutation Num_of_permutations 1u345678901p"},
        {kMissingSymbol, "Symbol_of_missing_Gentype"},
        {kMaxRetain, "Max_retain"},
        {kFdrCutoff, "FDR_cutoff_for_candidate_locus_combinations"},
        {kPermutations, "Number_of_permutation 1u34567890p"},
        {kImputations, "How_many_imputation_to_deal_with_missing"},
        {kBestM, "Best_m Permarker_no _e"},
        {kReplicates, "true"},
        {kIgnored, "Ma Marker_num"},
        {kUnknown, "fdr_cutoff SAMPLE_SIZE a"}};
    for (const auto& [expected, names] : rows) {
        std::istringstream words(names);
        for (std::string name; words >> name;) EXPECT_EQ(parameter_of(name), expected) << name;
    }
}

TEST(ParameterNumbers, AreCutOrRounded) {
    const float values[] = {99.9F, 2.5F, -2.5F, 0.49999997F, 3e9F};
    const int cut[] = {99, 2, -2, 0, INT_MIN}, rounded[] = {100, 3, -3, 0, INT_MIN};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(cut_to_int(values[i]), cut[i]);
        EXPECT_EQ(rounded_to_int(values[i]), rounded[i]);
    }
}

TEST_F(ParameterFileTest, NeedlessParameterIsShownWithItsNumber) {
    const ConsoleCapture console;
    print_needless_parameter(read("Odd_name 2.75\n").entries[0], 3);
    EXPECT_EQ(console.text(),
              "Find error,needless parameter! parametername=Odd_name "
              "parametervalue=2.750000 k=3\n");
}

TEST_F(ParameterFileTest, NothingIsIgnoredOrGuessedInSilence) {
    std::string full;
    for (int line = 1; line <= 22; ++line) full += "Odd 1\n";
    const std::pair<std::string, std::string> rows[] = {
        // without the file name
        {full,
         "21: Odd: ignored from here on: 22 lines, so the first 20 names and values are read"},
        {"Head 1\nBest_m 0\nMax_retain 0\nNumber_of_permutation 0\nSample_size 1\nOdd 5\n", ""},
        {"Inputfile a\nFDR_cutoff_for_candidate_locus_combinations 1\nSymbol_of_missing_Gentype x",
         ""},
        {"Sample_size 12abc\n",
         "1: Sample_size: a number was expected, not \"12abc\"; what is no number of it is read as "
         "the next name\n1: abc: ignored from here on: 1 lines, so the first 1 names and values "
         "are read"},
        {"\nSample_size", "2: Sample_size: a number was expected; it is taken as 0"},
        {"Best_m 9.5\n",
         "1: Best_m: a whole number was expected, not 9.5; it is cut, and rounded by the builder "
         "of base learners"},
        {"Head 1\n\nHead 1\n", "3: Head: given before in line 1; the last value is used"},
        {"Sample_size 0\n", "1: Sample_size: at least 1 was expected, not 0"},
        {"Number_of_permutation -1\n", "1: Number_of_permutation: at least 0 was expected, not -1"},
        {"Best_m 1e10\n", "1: Best_m: 1e10 does not fit a whole number; -2147483648 is used"},
        {"Best_m 123456789\n", "1: Best_m: 123456789 has too many digits; 123456792 is used"},
        {"Head 2\n", "1: Head: 0 or 1 was expected, not 2; 0 is used"},
        {"FDR_cutoff_for_candidate_locus_combinations 1.5\n",
         "1: FDR_cutoff_for_candidate_locus_combinations: above 0 and at most 1 was expected, not "
         "1.5; 0.75 is used"},
        {"Marker_num 5\n", "1: Marker_num: no such parameter; it is ignored"},
        {"Trials 5\n",
         "1: Trials: no such parameter; its letters make it be taken as Number_of_permutation"},
        {"Inputfile", "1: Inputfile: a value was expected"},
        {"Inputfile " + std::string(100, 'f'), "1: Inputfile: at most 99 characters are kept"},
        {"9 1\nBest_m 5\n",
         "2: Best_m: ignored: for each name that starts with no letter the last entry is left "
         "out"}};
    for (const auto& [text, expected] : rows) {
        const ConsoleCapture console;
        DiagnosticsCapture diagnostics;
        diagnose_parameters(read(text));
        std::istringstream said(diagnostics.take());
        std::string but_missing;
        for (std::string line; std::getline(said, line);) {
            if (line.find(" is not given; ") == line.npos) but_missing += line + '\n';
        }
        const std::string lines = expected.empty() ? "" : expected + '\n';
        EXPECT_EQ(but_missing, said_of("parameter.txt", lines)) << text;
    }
}

TEST_F(ParameterFileTest, WhatDecidesAboutARunIsMissed) {
    DiagnosticsCapture diagnostics;
    diagnose_parameters(read("Head 1\n"));
    EXPECT_EQ(diagnostics.take(),
              said_of("parameter.txt",
                      "Inputfile is not given; there is no data set\n"
                      "Sample_size is not given; 547 are screened, 400 modelled\n"
                      "Number_of_markers is not given; 541325 is used\n"
                      "Max_retain is not given; 1 is used\n"
                      "Number_of_permutation is not given; 100 are screened, none "
                      "modelled\n"
                      "Best_m is not given; 20 is used\n"));
    diagnose_parameters(
        read("Inputfile a\nSample_size 5\nNumber_of_markers 5\nMax_retain 1\n"
             "Number_of_permutation 1\nBest_m 5\n"));
    EXPECT_EQ(diagnostics.take(), "");
}

}  // namespace
}  // namespace vort::testing
