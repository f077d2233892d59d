#include "vort/parameter_readers.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <iostream>
#include <string>

#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::status_zero;
using vort::testing::TemporaryFolder;
using vort::testing::write_file;

constexpr int kUnset = 7777;

std::string listed(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += (value == kUnset ? "-" : std::to_string(value)) + ' ';
    return text;
}

struct ScreeningSettings {
    int individuals = kUnset, markers = kUnset, permutations = kUnset, imputations = kUnset;
    int title = kUnset, id = kUnset, kept = kUnset;
    char input[100] = "none";

    void read() {
        ReadPara_gw_vort3(&individuals, &markers, &permutations, &imputations, &title, &id, &kept,
                          input);
    }
    std::string shown() const {
        return listed({individuals, markers, permutations, imputations, title, id, kept}) + input;
    }
};

struct EnsembleSettings {
    int individuals = kUnset, best = kUnset, imputations = kUnset, title = kUnset, id = kUnset;

    void read() { ReadPara(&individuals, &best, &imputations, &title, &id); }
    std::string shown() const { return listed({individuals, best, imputations, title, id}); }
};

class ParameterReaders : public ::testing::Test {
  private:
    TemporaryFolder folder_;
};

TEST_F(ParameterReaders, EachStoresItsOwnSettings) {
    const struct {
        const char* text;
        const char* screening;  // Sample Marker Permutation imputations Head record Best_m file
        const char* ensemble;   // Sample Best_m imputations, and the two left alone
    } rows[] = {
        {"", "- - - - - - - none", "- - - - - "},
        {"Sample_size 99.9", "99 - - - - - - none", "99 - - - - "},
        {"Number_of_markers 12", "- 12 - - - - - none", "- - - - - "},
        {"Number_of_permutation 12", "- - 12 - - - - none", "- - - - - "},
        {"Trials 12", "- - 12 - - - - none", "- - - - - "},
        {"How_many_imputation 3", "- - - 3 - - - none", "- - 3 - - "},
        {"Head 1", "- - - - 1 - - none", "- - - - - "},
        {"Recorder_num 1", "- - - - - 1 - none", "- - - - - "},
        {"Best_m -12.9", "- - - - - - -12 none", "- -12 - - - "},
        {"Inputfile a.txt", "- - - - - - - a.txt", "- - - - - "},
        {"Max_retain 4\nMarker 5\nFDR 0.5\nSymbol 9", "- - - - - - - none", "- - - - - "},
        {"Sample_size 1\nSample_size 2", "2 - - - - - - none", "2 - - - - "},
        {"Number_of_markers 9\nBest_m 9", "- 9 - - - - 9 none", "- 9 - - - "},
        {"1 5\nSample_size 6\nHead 1", "6 - - - - - - none", "6 - - - - "},
    };
    for (const auto& row : rows) {
        write_file("parameter.txt", row.text);
        const DiagnosticsCapture diagnostics;
        const ConsoleCapture console;
        ScreeningSettings screening;
        screening.read();
        EXPECT_EQ(screening.shown(), row.screening) << row.text;
        EnsembleSettings ensemble;
        ensemble.read();
        EXPECT_EQ(ensemble.shown(), row.ensemble) << row.text;
    }
}

// The first reader keeps the built-in defaults; the second finds the file that the first wrote.
TEST_F(ParameterReaders, AMissingFileServesTheSecondReaderOnly) {
    const ConsoleCapture console;
    ScreeningSettings screening;
    screening.markers = 541325;
    screening.read();
    EXPECT_EQ(screening.shown(), "- 541325 - - - - - none");
    EnsembleSettings ensemble;
    ensemble.read();
    EXPECT_EQ(ensemble.shown(), "1033 100 10 - - ");
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\n");
}

TEST_F(ParameterReaders, LongFileNamesFitTheirPlace) {
    write_file("parameter.txt", "Number_of_markers 1\nInputfile " + std::string(200, 'f'));
    const DiagnosticsCapture diagnostics;
    ScreeningSettings screening;
    screening.read();
    EXPECT_EQ(screening.input, std::string(99, 'f'));
}

TEST_F(ParameterReaders, BothNameNeedlessParameters) {
    write_file("parameter.txt", "Odd 7.5\n9 1\nSample_size 4\nxz\n");
    const DiagnosticsCapture diagnostics;
    const ConsoleCapture console;
    ScreeningSettings().read();
    EnsembleSettings().read();
    const std::string once =
        "Find error,needless parameter! parametername=Odd parametervalue=7.500000 k=3\n"
        "Find error,needless parameter! parametername=9 parametervalue=1.000000 k=3\n";
    EXPECT_EQ(console.text(), once + once);
}

TEST_F(ParameterReaders, MoreBestMarkersThanMarkersEndTheProgram) {
    const auto read = [](const char* text) {
        write_file("parameter.txt", text);
        console_to_stderr();
        ScreeningSettings settings;
        settings.markers = 20;
        settings.read();
        std::cerr << "passed " << settings.kept;
        std::exit(3);
    };
    const auto passed = ::testing::ExitedWithCode(3);
    EXPECT_EXIT(read("Best_m 21\n"), status_zero(), "^find error for Best_m=21 and nmarker=20$");
    EXPECT_EXIT(read("Best_m 5\nNumber_of_markers 4\n"), status_zero(),
                "^find error for Best_m=5 and nmarker=4$");
    EXPECT_EXIT(read("Number_of_markers -1\n"), status_zero(),
                "find error for Best_m=0 and nmarker=-1$");
    EXPECT_EXIT(read("Best_m 20.9\n"), passed, "passed 20$");
}

}  // namespace
}  // namespace vort
