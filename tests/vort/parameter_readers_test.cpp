#include "vort/parameter_readers.h"

#include <initializer_list>
#include <iostream>

#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

constexpr int kUnset = 7777;

std::string listed(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += (value == kUnset ? "-" : std::to_string(value)) + ' ';
    return text;
}

// Sample Marker Permutation imputations Head record Best_m file
std::string screening_settings(int markers = kUnset) {
    int v[7] = {kUnset, markers, kUnset, kUnset, kUnset, kUnset, kUnset};
    char input[100] = "none";
    ReadPara_gw_vort3(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], input);
    return listed({v[0], v[1], v[2], v[3], v[4], v[5], v[6]}) + input;
}

// Sample Best_m imputations, and two that are left alone
std::string ensemble_settings() {
    int v[5] = {kUnset, kUnset, kUnset, kUnset, kUnset};
    ReadPara(&v[0], &v[1], &v[2], &v[3], &v[4]);
    return listed({v[0], v[1], v[2], v[3], v[4]});
}

class ParameterReaders : public ::testing::Test {
  private:
    TemporaryFolder folder_;
};

TEST_F(ParameterReaders, EachStoresItsOwnSettings) {
    const struct {
        std::string text;
        std::string screening, ensemble;
    } rows[] = {
        {"", "- - - - - - - none", "- - - - - "},
        {"Sample_size 99.9", "99 - - - - - - none", "99 - - - - "},
        {"Number_of_markers 12", "- 12 - - - - - none", "- - - - - "},
        {"Number_of_permutation 12", "- - 12 - - - - none", "- - - - - "},
        {"How_many_imputation 3", "- - - 3 - - - none", "- - 3 - - "},
        {"Best_m -12.9", "- - - - - - -12 none", "- -12 - - - "},
        {"Inputfile " + std::string(200, 'f'), "- - - - - - - " + std::string(99, 'f'),
         "- - - - - "},
        {"Max_retain 4\nMarker 5\nFDR 0.5\nSymbol 9", "- - - - - - - none", "- - - - - "},
        {"Number_of_markers 9\nBest_m 9", "- 9 - - - - 9 none", "- 9 - - - "},
        {"1 5\nSample_size 6\nHead 1", "6 - - - - - - none", "6 - - - - "},
    };
    const DiagnosticsCapture diagnostics;
    const ConsoleCapture console;
    for (const auto& row : rows) {
        write_file("parameter.txt", row.text);
        EXPECT_EQ(screening_settings(), row.screening) << row.text;
        EXPECT_EQ(ensemble_settings(), row.ensemble) << row.text;
    }
}

// The first reader keeps the built-in defaults; the second finds the file that the first wrote.
TEST_F(ParameterReaders, AMissingFileServesTheSecondReaderOnly) {
    const ConsoleCapture console;
    EXPECT_EQ(screening_settings(541325), "- 541325 - - - - - none");
    EXPECT_EQ(ensemble_settings(), "1033 100 10 - - ");
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\n");
}

TEST_F(ParameterReaders, MoreBestMarkersThanMarkersEndTheProgram) {
    const std::pair<const char*, const char*> rows[] = {
        {"Best_m 21\n", "find error for Best_m=21 and nmarker=20$"},
        {"Best_m 5\nNumber_of_markers 4\n", "find error for Best_m=5 and nmarker=4$"},
        {"Number_of_markers -1\n", "find error for Best_m=0 and nmarker=-1$"},
    };
    for (const auto& [text, message] : rows) {
        write_file("parameter.txt", text);
        expect_end([] { screening_settings(20); }, message);
    }
    write_file("parameter.txt", "Best_m 20.9\n");
    const DiagnosticsCapture diagnostics;
    EXPECT_EQ(screening_settings(20), "- 20 - - - - 20 none");
}

}  // namespace
}  // namespace vort::testing
