// What is read from "parameter.txt", what the stages take of it, and what is said about it.
#include "common/parameter_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include "common/settings.h"
#include "support/temporary_folder.h"
#include "support/told.h"

namespace vort::testing {
namespace {

using ::testing::StartsWith;

// "Head=1@1" is a number in line 1, "Head='x'@1" a text; '?' marks a value not taken whole.
std::string shown(const ParameterFile& file) {
    std::string text = std::to_string(file.line_count) + " lines:";
    for (const ParameterEntry& entry : file.entries) {
        const auto value = static_cast<double>(entry.value);
        text += ' ' + entry.name + '=';
        text += entry.is_text ? "'" + entry.text + "'" : to_text(general(value));
        text += (entry.whole_word ? "@" : "?@") + std::to_string(entry.line);
    }
    return text + "; " + std::to_string(file.letter_count);
}

TEST(ParameterFile, Entries) {
    const std::pair<std::string, std::string> rows[] = {
        {"\n\nHead 1\n\n\nBest_m -5.25\n", "2 lines: Head=1@3 Best_m=-5.25@6; 2"},
        {"Head\t1\r\n\r\n", "2 lines: Head=1@1 =0?@0; 1"},
        {"Head\n1\nBest_m 5", "3 lines: Head=1@1 Best_m=5@3 =0?@0; 2"},
        {"Head 1 Best_m 5\n", "1 lines: Head=1@1; 1"},
        {"In\ta.txt\nSymbol -1\ncy 7x", "3 lines: In='a.txt'@1 Symbol='-1'@2 cy='7x'@3; 3"},
        // The rest of a word becomes the next name, and a word that is no number is read again.
        {"Sample_size 12abc 7\nHead 1\n", "2 lines: Sample_size=12?@1 abc=7@1; 2"},
        {"Head 1e1e\nBest 3", "2 lines: Head=10?@1 e=0?@1; 2"},
        {"Head 0x1F\nBest_m -inf\nMax +.5e+1\n", "3 lines: Head=31@1 Best_m=-inf@2 Max=5@3; 3"},
        // Names that start with no letter take a place, but not in the count.
        {"1x 5\nHead 1\n_m 3\nBest_m 3\n", "4 lines: 1x=5@1 Head=1@2 _m=3@3 Best_m=3@4; 2"},
        {std::string(60, 'a') + " 1\nI " + std::string(120, 'c'),
         "2 lines: " + std::string(51, 'a') + "=1@1 I='" + std::string(99, 'c') + "'@2; 2"}};
    for (const auto& [text, expected] : rows) EXPECT_EQ(shown(parse_parameters(text)), expected);
}

TEST(ParameterOf, LooksAtAFewLettersOnly) {
    using enum Parameter;
    const std::pair<Parameter, const char*> rows[] = {{kSampleSize, "camel"},
                                                      {kMarkers, "Num_of_permutations"},
                                                      {kMarkers, "1u345678901p"},
                                                      {kRecorder, "xecx"},
                                                      {kPermutations, "1u34567890p"},
                                                      {kBestM, "Permarker_no"},
                                                      {kReplicates, "true"},
                                                      {kIgnored, "Marker_num"},
                                                      {kUnknown, "fdr_cutoff"},
                                                      {kUnknown, "HEAD"},
                                                      {kBestM, "_e"},
                                                      {kUnknown, "a"}};
    for (const auto& [expected, name] : rows) EXPECT_EQ(parameter_of(name), expected) << name;
}

// Numbers of a view, then what else it takes.
std::string views_of(const std::string& text) {
    const Settings s = settings_of(parse_parameters(text));
    std::ostringstream out;
    for (const int number :
         {s.screening.individuals, s.screening.markers, s.screening.permutations, s.screening.head,
          s.screening.record, s.screening.best_markers, s.screening.best_markers_given}) {
        out << number << ' ';
    }
    out << '[' << s.screening.input << "] | " << s.report.individuals << ' ' << s.report.markers
        << " | " << s.builder.individuals << ' ' << s.builder.markers << ' ' << s.builder.max_retain
        << ' ' << s.builder.permutations << ' ' << s.builder.fdr_cutoff;
    return out.str();
}

TEST(Settings, EachStageTakesItsOwn) {
    const std::string none = "0 0 1000 0 [] | 400 20 | 400 20 1 ";
    const std::pair<const char*, std::string> rows[] = {
        {"", "547 541325 100 " + none + "0 0.75"},
        {"Sample_size 99.9", "99 541325 100 0 0 1000 0 [] | 99 20 | 100 20 1 0 0.75"},
        {"Best_m -2.5\nMax 2.5", "547 541325 100 0 0 -2 -2 [] | 400 -2 | 400 -3 3 0 0.75"},
        {"Number_of_markers 3e9\nNumber_of_permutation 0.49999997\ntrue 7",
         "547 -2147483648 7 " + none + "0 0.75"},
        {"Head 1\nRecorder 2\nInputfile a\nFDR_ 0.5\nFDR 1.5\nMarker 5",
         "547 541325 100 1 2 1000 0 [a] | 400 20 | 400 20 1 0 0.75"},
        {"1 5\nFDR 0.5\nHead 1", "547 541325 100 " + none + "0 0.5"}};
    for (const auto& [text, expected] : rows) EXPECT_EQ(views_of(text), expected) << text;
}

TEST(Settings, MoreBestMarkersThanMarkersStopTheRun) {
    ScreeningSettings settings;
    settings.markers = settings.best_markers_given = 4;
    EXPECT_EQ(stop_of([&] { check_best_markers(settings); }), "goes on");
    settings.best_markers_given = 5;
    EXPECT_EQ(stop_of([&] { check_best_markers(settings); }),
              "0 find error for Best_m=5 and nmarker=4");
}

TEST(ParameterDiagnostics, NothingIsIgnoredOrGuessedInSilence) {
    const std::pair<std::string, std::string> rows[] = {
        {"Head 1\nFDR_cutoff_for_candidate_locus_combinations 1\nSymbol_of_missing_Gentype x\nOdd "
         "5",
         ""},
        {"Head 12abc",
         "1: Head: a number was expected, not \"12abc\"; what is no number of it is read as the "
         "next name\n1: abc: ignored from here on: 1 lines, so the first 1 names and values are "
         "read\n"},
        {"Head 1\n\nHead 1", "3: Head: given before in line 1; the last value is used\n"},
        {"Head 0.5",
         "1: Head: a whole number was expected, not 0.5; it is cut, and rounded by the builder of "
         "base learners\n"},
        {"Head 1e10", "1: Head: 1e10 does not fit a whole number; -2147483648 is used\n"},
        {"Head 123456789", "1: Head: 123456789 has too many digits; 123456792 is used\n"},
        {"Head 2", "1: Head: 0 or 1 was expected, not 2; 0 is used\n"},
        {"FDR_cutoff_for_candidate_locus_combinations 1.5",
         "1: FDR_cutoff_for_candidate_locus_combinations: above 0 and at most 1 was expected, not "
         "1.5; 0.75 is used\n"},
        {"Marker_num 5", "1: Marker_num: no such parameter; it is ignored\n"},
        {"Sample_size 0", "1: Sample_size: at least 1 was expected, not 0\n"},
        {"Max_retain -1", "1: Max_retain: at least 0 was expected, not -1\n"},
        {"Inputfile " + std::string(100, 'f'), "1: Inputfile: at most 99 characters are kept\n"},
        {"Heads 1", "1: Heads: no such parameter; its letters make it be taken as Head\n"},
    };
    for (const auto& [text, expected] : rows) {
        Told told;
        diagnose_parameters(parse_parameters(text), told.diagnostics);
        std::string said = told.take();
        EXPECT_EQ(said.substr(0, said.find("parameter.txt: ")), said_of("parameter.txt", expected));
    }
    Told told;
    diagnose_parameters(parse_parameters("9 1\nMax 1\nHead 1\nBest 1"), told.diagnostics);
    const std::string said = told.take();
    for (const char* expected :
         {":4: Best: ignored: for each name that starts with no letter the last entry is left "
          "out\n",
          ": Inputfile is not given; there is no data set\n",
          ": Sample_size is not given; 547 are screened, 400 modelled\n",
          ": Number_of_markers is not given; 541325 is used\n",
          ": Number_of_permutation is not given; 100 are screened, none modelled\n",
          ": Best_m is not given; 20 is used\n"}) {
        EXPECT_NE(said.find(expected), said.npos) << expected << said;
    }
}

TEST(ReadParameterFile, WritesAMissingFileAndLeavesAnUnreadableOneAlone) {
    const TemporaryFolder folder;
    Told told;
    Transcript said(true);
    const ParameterFile missing = read_parameter_file(told.diagnostics);
    EXPECT_FALSE(missing.found || missing.letter_count > 0);
    print_warnings(missing, said);
    EXPECT_EQ(said.text(), "Don't find parameter file use default value\n");
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
    EXPECT_EQ(read_parameter_file(told.diagnostics).letter_count, 11);
    EXPECT_EQ(told.take(), "");
    std::filesystem::remove("parameter.txt");
    std::filesystem::create_symlink("/proc/self/mem", "parameter.txt");
    EXPECT_EQ(stop_of([&] { read_parameter_file(told.diagnostics); }), "1 ");
    EXPECT_EQ(told.take(),
              "parameter.txt: could not be read (Input/output error); it is left as it is\n");
    std::filesystem::remove("parameter.txt");
    std::filesystem::create_directory("parameter.txt");
    EXPECT_EQ(stop_of([&] { read_parameter_file(told.diagnostics); }),
              "0 Don't find parameter file use default value\nDon't open parameter file\n");
    EXPECT_EQ(told.take(), "parameter.txt: could not be replaced (File exists)\n");
    // Nothing is written through a link to nowhere.
    std::filesystem::remove("parameter.txt");
    std::filesystem::create_symlink("elsewhere", "parameter.txt");
    EXPECT_EQ(stop_of([&] { read_parameter_file(told.diagnostics); }),
              "0 Don't find parameter file use default value\nDon't open parameter file\n");
    EXPECT_FALSE(std::filesystem::exists("elsewhere"));
    std::filesystem::remove("parameter.txt");
    write_file("parameter.txt", "\xEF\xBB\xBFHead 1\n");
    told.take();
    EXPECT_EQ(read_parameter_file(told.diagnostics).entries.size(), 1U);
    EXPECT_THAT(told.take(), StartsWith("parameter.txt:1: begins with a byte order mark"));
}

}  // namespace
}  // namespace vort::testing
