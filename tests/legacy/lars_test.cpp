#include "legacy/lars.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "support/console_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

double run(int rows, int columns, const char* prefix = "") {
    LARS lars(rows, columns, 50, 0);
    lars.datapath = prefix;
    double v[5];
    return lars.run(1, &v[0], &v[1], &v[2], &v[3], &v[4]);
}

TEST(LarsRun, FileInFileOut) {
    const std::string data = VORT_TEST_DATA "/lars/data/";
    const TemporaryFolder folder;
    std::filesystem::copy_file(data + "output_X_Y.txt", "a-output_X_Y.txt");
    const ConsoleCapture console;
    EXPECT_NEAR(run(40, 10, "a-"), 0.468898, 5e-7);
    EXPECT_EQ(console.text(), read_file(data + "console.txt"));
    EXPECT_EQ(read_file("a-beta.txt"), read_file(data + "beta.txt"));
    EXPECT_EQ(run(0, 3), LARS::kNoResult);
}

TEST(LarsRun, EarlyEnds) {
    const TemporaryFolder folder;
    const auto two_rows = [] { return run(2, 1); };
    expect_end(two_rows, "^When open file output_X_Y.txt, find error\n");
    for (const char* text : {"0.5\n", "x 0 -0.5 0\n", ""}) {
        write_file("output_X_Y.txt", text);
        expect_end(two_rows,
                   "[12]: expected a number(.|\n)*find error input file=output_X_Y.txt\n");
    }
    write_file("output_X_Y.txt", "1 1\n-1 1\n");
    expect_end(two_rows, "Y >0 count=1 mean=0\nmaybe have some error, because");
}

// x = (1, -1, 0, 0) / sqrt 2 has leverages 1/2, 1/2, 0, 0 and, with the coefficient sqrt 2, fits
// (1, -1, 0, 0); left out, the first two are predicted as -1 and 1, with errors of 4.
TEST(Lars, WorkedByHand) {
    std::vector<double> x = {std::sqrt(0.5), -std::sqrt(0.5), 0, 0}, y = {3, -3, 1, -1};
    std::vector<double> e0(4), e1(4), beta = {0};
    double* X[] = {x.data()};
    double* E[] = {e0.data(), e1.data()};
    LARS lars(4, 1, 50, 0);
    int step = -1;
    double stat[4] = {};
    const ConsoleCapture console;
    EXPECT_DOUBLE_EQ(lars.fos(X, y.data(), E, beta.data(), &step), 2.5 / 20);
    EXPECT_EQ(e0, y);
    beta[0] = std::sqrt(2.0);
    lars.calculationT(X, y.data(), 4, 1, beta.data(), &stat[0], &stat[1], &stat[2], &stat[3]);
    EXPECT_NEAR(stat[1], std::sqrt(2.0), 1e-12);
    EXPECT_NEAR(stat[2], 4 * 4 + 4 * 4 + 1 + 1, 1e-12);
    EXPECT_NEAR(stat[3], std::sqrt(2.0), 1e-12);
}

}  // namespace
}  // namespace vort::testing
