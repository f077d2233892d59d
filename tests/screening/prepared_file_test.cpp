#include "screening/prepared_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "screening/screening.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::read_file;
using vort::testing::said_of;
using vort::testing::ScreeningTest;
using vort::testing::status_zero;
using vort::testing::write_file;

constexpr const char* kFirstFile = ".\\prepare_data0_0.050000.txt";
constexpr int kUntouched = -7;

class PreparedFile : public ScreeningTest {
  protected:
    // Six individuals, four markers; the third tells the groups apart, the others hardly vary.
    void SetUp() override {
        set_sizes(6, 4);
        Save_marker_length = 2;
        const ConsoleCapture console;
        load("1 0 1 2 0\n1 0 1 2 1\n1 0 0 2 1\n0 0 1 0 1\n0 0 0 0 0\n0 0 1 -1 1\n");
        samplesize[0] = 60;  // missing genotypes are no reason to drop here
    }

    static std::vector<int> screened() {
        const ConsoleCapture console;
        std::vector<int> ranking(Marker);
        single_marker_test_five_model_drop_missing_diseasemarker1(ranking.data());
        return ranking;
    }

    static std::vector<int> read(int n) {
        std::vector<int> ranking(Marker, kUntouched);
        single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(ranking.data(), n);
        return ranking;
    }
};

TEST_F(PreparedFile, HoldsPhenotypesAndCountsOfTheBestMarkers) {
    not_over_missing_marker_drop_ratio = 0.5;
    samplesize[0] = 3;
    save_prepared_file({0, 3, 2, 4, 1});
    EXPECT_EQ(read_file(".\\prepare_data0_0.500000.txt"),
              "1 1 1 0 0 0 \n"
              "2\t0\t0\t3\t0\t2\t0\t0\t1\t\n"
              "1\t1\t2\t0\t0\t1\t2\t0\t0\t\n");
    not_over_missing_marker_drop_ratio = 1.0;
    Datapath = "kept_";
    Save_marker_length = 1000;
    save_prepared_file({0, 3, 2, 4, 1});
    const std::string text = read_file("kept_prepare_data1.txt");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5) << "no more lines than markers";
}

TEST_F(PreparedFile, RoundTrip) {
    save_pre = 1;
    const std::vector<short> first(Y, Y + Sample);
    const std::vector<int> first_ranking = screened();
    std::rotate(Y, Y + 2, Y + Sample);
    const std::vector<short> second(Y, Y + Sample);
    const std::vector<int> second_ranking = screened();
    std::fill(Y, Y + Sample, short{9});

    DiagnosticsCapture diagnostics;
    const ConsoleCapture console;
    EXPECT_EQ(read(0),
              (std::vector<int>{first_ranking[0], first_ranking[1], kUntouched, kUntouched}));
    EXPECT_EQ(std::vector<short>(Y, Y + Sample), first);
    EXPECT_EQ(read(1),
              (std::vector<int>{second_ranking[0], second_ranking[1], kUntouched, kUntouched}));
    EXPECT_EQ(std::vector<short>(Y, Y + Sample), second);
    EXPECT_EQ(diagnostics.take() + console.text(), "");
    EXPECT_EQ(samplesize[0], 60) << "the group sizes stay those of the data set";
}

TEST_F(PreparedFile, LoadsTheDataSetOnFirstUse) {
    save_pre = 1;
    screened();
    release_data_set();
    const ConsoleCapture console;
    read(0);
    EXPECT_NE(X, nullptr);
    EXPECT_EQ(console.text(), "read data is finished\n");
}

TEST_F(PreparedFile, WhatIsWrongWithAFile) {
    const std::string counts = "\t1\t2\t0\t0\t1\t2\t0\t0\t\n";
    const std::string unusable =
        "a column below 4 and eight counts were expected; column 0 is taken\n";
    const struct {
        std::string text;
        std::vector<int> ranking;
        std::string said;
    } rows[] = {
        {"1 0 1 0 1 0 \n3" + counts + "1" + counts, {3, 1, kUntouched, kUntouched}, ""},
        {"1 0 1 0 1 0\n3" + counts + "1\t1\t2\t0\t0\t1\t2\t0\t0",
         {3, 1, kUntouched, kUntouched},
         ""},
        {"1 0 1\n3" + counts + "1" + counts,
         {3, 1, kUntouched, kUntouched},
         "1: 3 phenotypes, 6 expected; the others are taken as 0\n"},
        {"1 0 1 0 1 0 \n4" + counts + "1" + counts,
         {0, 1, kUntouched, kUntouched},
         "2: " + unusable},
        {"1 0 1 0 1 0 \n3" + counts + "-1" + counts,
         {3, 0, kUntouched, kUntouched},
         "3: " + unusable},
        {"1 0 1 0 1 0 \n3" + counts, {3, 0, kUntouched, kUntouched}, "3: " + unusable},
        // A line that is too short takes its counts from the next.
        {"1 0 1 0 1 0 \n3\t1\t2\n1" + counts, {3, 0, kUntouched, kUntouched}, "3: " + unusable},
        {"",
         {0, 0, kUntouched, kUntouched},
         "1: 0 phenotypes, 6 expected; the others are taken as 0\n1: " + unusable +
             "1: " + unusable},
    };
    for (const auto& row : rows) {
        restart_prepared_files();
        write_file(kFirstFile, row.text);
        DiagnosticsCapture diagnostics;
        EXPECT_EQ(read(0), row.ranking) << row.text;
        EXPECT_EQ(diagnostics.take(), said_of(kFirstFile, row.said)) << row.text;
    }
}

TEST_F(PreparedFile, AreConsumedInOrder) {
    save_pre = 1;
    screened();
    screened();
    const auto wrong = [](int first, int second) {
        console_to_stderr();
        if (first >= 0) read(first);
        read(second);
    };
    const std::string message = "^find error when open prepare data file current num=";
    EXPECT_EXIT(wrong(-1, 1), status_zero(), message + "0 but permut=1\n$");
    EXPECT_EXIT(wrong(0, 0), status_zero(), message + "1 but permut=0\n$");
    EXPECT_EXIT(wrong(0, 2), status_zero(), message + "1 but permut=2\n$");
}

TEST_F(PreparedFile, AFileThatCannotBeOpenedEndsTheProgram) {
    EXPECT_EXIT((console_to_stderr(), read(0)), status_zero(),
                "^find error when opening file \\.\\\\prepare_data0_0\\.050000\\.txt\n$");
    std::filesystem::create_directory(kFirstFile);
    EXPECT_EXIT((console_to_stderr(), save_prepared_file({0, 1, 2, 3, 4})), status_zero(),
                "find error open f_prepare_data_for_VORT \n$");
}

}  // namespace
}  // namespace vort
