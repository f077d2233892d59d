#include "screening/prepared_file.h"

#include <algorithm>

#include "screening/screening.h"
#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

constexpr const char* kFirstFile = ".\\prepare_data0_0.050000.txt";

class PreparedFile : public ScreeningTest {
  protected:
    // Six individuals, four markers; the third tells the groups apart, the others hardly vary.
    void SetUp() override {
        set_sizes(6, 4);
        Save_marker_length = 2;
        load_quietly("1 0 1 2 0\n1 0 1 2 1\n1 0 0 2 1\n0 0 1 0 1\n0 0 0 0 0\n0 0 1 -1 1\n");
        samplesize[0] = 60;  // missing genotypes are no reason to drop here
    }

    static std::vector<int> screened() {
        const ConsoleCapture console;
        std::vector<int> ranking(Marker);
        single_marker_test_five_model_drop_missing_diseasemarker1(ranking.data());
        return ranking;
    }

    // The two columns read, behind which nothing may change.
    static std::vector<int> read(int n) {
        std::vector<int> ranking(Marker, -7);
        single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(ranking.data(), n);
        EXPECT_EQ(ranking[2] + ranking[3], -14);
        return {ranking[0], ranking[1]};
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
    Save_marker_length = 1000;  // more than markers
    save_prepared_file({0, 3, 2, 4, 1});
    EXPECT_THAT(read_file(".\\prepare_data1.txt"),
                ::testing::EndsWith("\n0\t3\t0\t0\t0\t3\t0\t0\t0\t\n"));
}

TEST_F(PreparedFile, RoundTrip) {
    save_pre = 1;
    std::vector<std::vector<short>> phenotypes;
    std::vector<std::vector<int>> rankings;
    for (int d = 0; d < 2; ++d) {
        phenotypes.emplace_back(Y, Y + Sample);
        rankings.push_back(screened());
        rankings.back().resize(2);
        std::rotate(Y, Y + 2, Y + Sample);
    }
    release_data_set();
    DiagnosticsCapture diagnostics;
    const ConsoleCapture console;
    for (int d = 0; d < 2; ++d) {
        EXPECT_EQ(read(d), rankings[d]);
        EXPECT_EQ(std::vector<short>(Y, Y + Sample), phenotypes[d]);
    }
    EXPECT_EQ(diagnostics.take() + console.text(), "read data is finished\n") << "on first use";
}

TEST_F(PreparedFile, WhatIsWrongWithAFile) {
    const std::string counts = "\t1\t2\t0\t0\t1\t2\t0\t0\t\n";
    const std::string lines = "3" + counts + "1" + counts;
    const auto no_column = [](const char* read) {
        return ": a column below 4 was expected, not " + std::string(read) +
               "; column 0 is taken\n";
    };
    const std::string unusable =
        ": a column and eight counts were expected; column 0 is taken from here on\n";
    const std::string few = " phenotypes, 6 expected; the others are taken as 0\n";
    const struct {
        std::string text;
        std::vector<int> ranking;
        std::string said;
    } rows[] = {
        {"1 0 1 0 1 0 \n" + lines, {3, 1}, ""},
        {"1 0 1 0 1 0\n3" + counts + "1\t1\t2\t0\t0\t1\t2\t0\t0", {3, 1}, ""},
        {"1 0 1\n" + lines, {3, 1}, "1: 3" + few},
        {"1 0 1 0 1 0 \n4" + counts + "1" + counts, {0, 1}, "2" + no_column("4")},
        {"1 0 1 0 1 0 \n3" + counts + "-1" + counts, {3, 0}, "3" + no_column("-1")},
        {"1 0 1 0 1 0 \n3" + counts, {3, 0}, "3" + unusable},
        // A line that is too short takes its counts from the next.
        {"1 0 1 0 1 0 \n3\t1\t2\n1" + counts, {3, 0}, "3" + unusable},
        {"", {0, 0}, "1: 0" + few + "1" + unusable},
    };
    for (const auto& row : rows) {
        restart_prepared_files();
        write_file(kFirstFile, row.text);
        DiagnosticsCapture diagnostics;
        EXPECT_EQ(read(0), row.ranking) << row.text;
        EXPECT_EQ(diagnostics.take(), said_of(kFirstFile, row.said)) << row.text;
    }
}

TEST_F(PreparedFile, EndsOfTheProgram) {
    expect_end([] { read(0); },
               "^find error when opening file \\.\\\\prepare_data0_0\\.050000\\.txt\n$");
    save_pre = 1;
    screened();
    const std::string order = "^find error when open prepare data file current num=";
    expect_end([] { read(1); }, order + "0 but permut=1\n$");
    expect_end([] { read(0), read(0); }, order + "1 but permut=0\n$");
    restart_prepared_files();
    std::filesystem::remove(kFirstFile);
    std::filesystem::create_directory(kFirstFile);
    expect_end(
        [] {
            save_prepared_file({0, 1, 2, 3, 4});
        },
        "find error open f_prepare_data_for_VORT \n$");
}

}  // namespace
}  // namespace vort::testing
