// The selector against hand-worked paths, against the plain path, and against a whole run whose
// output is known.

#include "lars/lars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "lars/plain_path.h"
#include "support/console_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

// Column pointers that last as long as the expression they are made in.
struct Pointers {
    explicit Pointers(Columns& columns) {
        for (auto& column : columns) all.push_back(column.data());
    }
    operator double**() { return all.data(); }
    std::vector<double*> all;
};

LARS selector_for(const Path& p) {
    return LARS(static_cast<int>(p.y.size()), static_cast<int>(p.x.size()), p.limit, 0);
}

double fos(Path& p) {
    return selector_for(p).fos(Pointers(p.x), p.y.data(), Pointers(p.e), p.beta.data(), &p.stop);
}

void walk(Path& p) {
    const ConsoleCapture console;
    p.ratio = fos(p);
    p.printed = console.text();
}

// ---- Paths worked by hand on sixteen rows: columns with a single 1, which are orthonormal, so
// that the response lists the coefficients and every number on the way is exact.

std::vector<double> column(std::size_t row, double value = 1.0) {
    std::vector<double> result(16, 0.0);
    result[row] = value;
    return result;
}

Path path_of(Columns columns, std::vector<double> response, int limit = 50) {
    response.resize(16, 0.0);
    return Path(std::move(columns), std::move(response), limit);
}

TEST(StagewisePath, WorkedByHand) {
    const Columns x = {column(0), column(1), column(2)};
    const struct {
        Path path;
        double ratio;
        int stop;
        std::vector<double> beta;
        const char* first_entry;
    } cases[] = {// Sums of squares 85, 21, 5, 1, so Cp = 1020, 252.5, 61, 13.5.
                 {path_of(x, {8, -4, 2, 1}), 13.5 / 1020, 3, {8, -4, 2}, "positive"},
                 {path_of(x, {8, -4, 2, 1}, 2), 14.5 / (14.0 * 85 / 21), 1, {8, 0, 0}, "positive"},
                 // A tie, of different signs.
                 {path_of({x[1], x[0]}, {4, -4, 0, 1}), 14.0 / 429, 2, {-4, 4}, "negative"},
                 // Equal Cp: 14 * 29 / 28 = 14 * 28 / 28 + 0.5.
                 {path_of({x[0]}, {1, 5, 1, 1, 1}), 1.0, 0, {0}, "positive"}};
    for (const auto& c : cases) {
        Path path = c.path;
        walk(path);
        EXPECT_DOUBLE_EQ(path.ratio, c.ratio);
        EXPECT_EQ(path.stop, c.stop);
        EXPECT_EQ(path.beta, c.beta);
        EXPECT_THAT(path.printed,
                    StartsWith(std::string("find ") + c.first_entry + " coefficient at 0 "));
    }
}

TEST(StagewisePath, EndsWhereTheResidualVanishes) {
    Path no_response = path_of({column(0)}, {});
    walk(no_response);
    EXPECT_EQ(no_response.printed, "Residual prediction error vector E[0] is zero, at 0 step !\n");
    EXPECT_EQ(no_response.stop, -1) << "must stay as the caller set it";

    Path last_column = path_of({column(0)}, {8});
    walk(last_column);
    EXPECT_THAT(last_column.printed, EndsWith("Cp[0]=inf\nCp[1]=-nan\nstopstep=0\n"
                                              "Cp return value=-nan\n"));

    Path turned = path_of({column(0), column(1)}, {-8});
    walk(turned);
    EXPECT_EQ(turned.ratio, 0.0);
    EXPECT_EQ(turned.beta, (std::vector<double>{8, 0}));
    EXPECT_EQ(turned.x, (Columns{column(0, -1), column(1)}));
}

TEST(StagewisePath, ColumnThatCannotEnterEndsTheProgram) {
    Path path = path_of({column(0), std::vector<double>(16, 0.0)}, {8, 0, 1});
    EXPECT_EXIT((console_to_stderr(), fos(path)), status_zero(),
                "maybe have some error, because beta");
}

// ---- Random paths

// All that a path leaves, to the bit; a NaN has any sign.
std::vector<std::uint64_t> bits(const Path& p) {
    std::vector<std::uint64_t> result;
    Columns all = p.x;
    all.insert(all.end(), p.e.begin(), p.e.end());
    all.insert(all.end(), {p.beta, {p.ratio, static_cast<double>(p.stop)}});
    for (const auto& values : all) {
        for (const double v : values) {
            result.push_back(std::isnan(v) ? ~0ULL : std::bit_cast<std::uint64_t>(v));
        }
    }
    return result;
}

// Columns of zeros and ones, some of them copies or complements of an earlier one; a response of
// zeros and ones, or of three values. Normalised by the selector itself.
Path random_path(std::mt19937_64& random) {
    const std::size_t n = 1 + random() % 70;
    Columns x(1 + random() % 40, std::vector<double>(n));
    std::vector<double> y(n);
    const std::uint64_t values = 2 + random() % 2;
    for (double& value : y) value = static_cast<double>(random() % values);
    for (std::size_t j = 0; j < x.size(); ++j) {
        const std::uint64_t kind = random() % 10;
        const std::uint64_t rarity = 2 + random() % 6;
        for (double& value : x[j]) value = random() % rarity == 0 ? 1.0 : 0.0;
        if (kind < 2) x[j] = x[j / 2];
        if (kind == 0) {
            for (double& value : x[j]) value = 1.0 - value;
        }
    }
    const int limit = random() % 4 == 0 ? 1 + static_cast<int>(random() % 20) : 50;
    Path path(std::move(x), std::move(y), limit);
    const ConsoleCapture console;
    selector_for(path).lars_init(Pointers(path.x), path.y.data(), 0);
    return path;
}

TEST(StagewisePath, AgreesWithThePlainPathToTheBit) {
    std::vector<int> endings(5, 0);
    for (std::uint64_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937_64 random(seed);
        Path plain = random_path(random);
        Path fast = plain;
        const End end = plain_walk(plain);
        ++endings[static_cast<std::size_t>(end)];
        if (end == End::kNoCoefficient) continue;
        walk(fast);
        ASSERT_EQ(fast.printed, plain.printed);
        ASSERT_EQ(bits(fast), bits(plain));
    }
    for (std::size_t end = 0; end < endings.size(); ++end) {
        EXPECT_GT(endings[end], 0) << "no random path ended in way " << end;
    }
}

// ---- Intake

TEST(Normalisation, CentresAndScalesToLengthOne) {
    Columns x = {{1, 0, 0, 1, 0}, {1, 1, 1, 1, 1}};
    std::vector<double> y = {1, -0.5, 0, 2, 0};
    const ConsoleCapture console;
    EXPECT_EQ(LARS(5, 2, 50, 0).lars_init(Pointers(x), y.data(), 0), 0);
    // sqrt(k (n - k) / n) for k ones among n.
    EXPECT_EQ(console.text(),
              "i=1\nmean=0.400000\nVarance=1.095445\ni=2\nmean=1.000000\nVarance=0.000000\n"
              "Y >0 count=2 mean=0.5\n");
    EXPECT_NEAR(x[0][0], 0.6 / std::sqrt(1.2), 1e-15);
    EXPECT_EQ(x[1], std::vector<double>(5, 0.0));
    EXPECT_EQ(y, (std::vector<double>{0.5, -1, -0.5, 1.5, -0.5}));

    EXPECT_EQ(LARS(5, 2, 50, 0).lars_init(Pointers(x), y.data(), 1), -1);
    EXPECT_THAT(console.text(), EndsWith("There are some error for variable X_T[1], all coordinate "
                                         "value are zero or one!\n"));
    EXPECT_EQ(y[0], 0.5) << "the response comes after the columns";
}

// What is read of two individuals with two columns, the response last.
Columns read_design(const std::string& name, int header = 0, int labels = 0) {
    Columns x(3, std::vector<double>(2));
    LARS lars(2, 2, 50, 0);
    lars.header_flag = header;
    lars.row_label_flag = labels;
    EXPECT_EQ(lars.ReadDatafromfile(Pointers(x), x[2].data(), name.c_str(), 2), 0);
    return x;
}

TEST(DesignFile, Layouts) {
    const TemporaryFolder folder;
    for (const auto& [text, header, labels] : {std::tuple{"0.5 1 0 \n-0.5 0 1 \npara  2 2\n", 0, 0},
                                               {"0.5 1 0 -0.5\n0 1", 0, 0},
                                               {"name y x0 x1\na 0.5 1 0\nb -0.5 0 1\n", 1, 1},
                                               {"a 0.5 1 0\nb -0.5 0 1\n", 0, 1}}) {
        write_file("data.txt", text);
        EXPECT_EQ(read_design("data.txt", header, labels), (Columns{{1, 0}, {0, 1}, {0.5, -0.5}}))
            << text;
    }
}

TEST(DesignFile, WhatCannotBeReadEndsTheProgram) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder.txt");
    write_file("short.txt", "0.5 1\n");
    write_file("word.txt", "0.5 x 0 -0.5 0 1\n");
    write_file("empty.txt", "");
    for (const std::string name : {"missing", "folder", "short", "word", "empty"}) {
        const std::string file = name + ".txt";
        const bool opens = name != "missing" && name != "folder";
        EXPECT_EXIT((console_to_stderr(), read_design(file)), status_zero(),
                    opens ? file + ":[12]: .*expected a number(.|\n)*find error input file=" + file
                          : "^When open file " + file + ", find error\n");
    }
}

// ---- Statistics

// Fitted values 1, -1, 0, 0; a fitted 0 counts as positive, a response at the mean never.
TEST(CorrectRate, CountsAgreementOfSigns) {
    Columns x = {{0.5, -0.5, 0, 0}, {7, 7, 7, 7}};
    std::vector<double> mixed = {2, -2, 1, -1}, equal(4, 5.0), beta = {2, -0.0};
    const ConsoleCapture console;
    EXPECT_EQ(LARS(4, 2, 50, 0).correct_error_rate(Pointers(x), mixed.data(), beta.data()), 0.75);
    EXPECT_EQ(LARS(4, 2, 50, 0).correct_error_rate(Pointers(x), equal.data(), beta.data()), 0.0);
    EXPECT_EQ(console.text(), "correct rate=0.75\ncorrect rate=0\n");
}

// Least-squares coefficients of columns a and b, by the normal equations.
std::pair<double, double> fit(const std::vector<double>& a, const std::vector<double>& b,
                              const std::vector<double>& y) {
    const double aa = plain_product(a, a), ab = plain_product(a, b), bb = plain_product(b, b);
    const double ay = plain_product(a, y), by = plain_product(b, y), d = aa * bb - ab * ab;
    return {(bb * ay - ab * by) / d, (aa * by - ab * ay) / d};
}

// Distance of the means of the two groups in pooled standard deviations.
double plain_separation(const std::vector<double>& values, const std::vector<double>& y) {
    double sum[2] = {}, squares = 0, n[2] = {};
    for (std::size_t i = 0; i < y.size(); ++i) {
        n[y[i] > 0] += 1;
        sum[y[i] > 0] += values[i];
        squares += values[i] * values[i];
    }
    const double pooled = squares - sum[0] * sum[0] / n[0] - sum[1] * sum[1] / n[1];
    return std::fabs(sum[1] / n[1] - sum[0] / n[0]) / std::sqrt(pooled / (n[0] + n[1] - 2));
}

struct Values {
    double stat1 = -1, stat2 = -1, p = -1, stat4 = -1, stat5 = -1;
};

TEST(Statistics, LeaveOneOutEqualsFittingAgain) {
    std::mt19937_64 random(20);
    Columns x(3, std::vector<double>(12));
    std::vector<double> y(12);
    for (auto* values : {&x[0], &x[1], &x[2], &y}) {
        for (double& value : *values) value = static_cast<double>(random() % 100) / 50 - 1;
    }
    const auto [b0, b2] = fit(x[0], x[2], y);
    std::vector<double> beta = {b0, 0.0, b2}, fitted, left_out;
    double squared_errors = 0;
    for (int i = 0; i < 12; ++i) {
        std::vector<double> rest[] = {x[0], x[2], y};
        for (auto& values : rest) values.erase(values.begin() + i);
        const auto [again0, again2] = fit(rest[0], rest[1], rest[2]);
        fitted.push_back(b0 * x[0][i] + b2 * x[2][i]);
        left_out.push_back(again0 * x[0][i] + again2 * x[2][i]);
        squared_errors += std::pow(left_out.back() - y[i], 2);
    }
    Values v;
    LARS(12, 3, 50, 0)
        .calculationT(Pointers(x), y.data(), 12, 3, beta.data(), &v.stat1, &v.stat2, &v.stat4,
                      &v.stat5);
    EXPECT_EQ(v.stat1, 0.5);
    EXPECT_NEAR(v.stat2, plain_separation(fitted, y), 1e-12);
    EXPECT_NEAR(v.stat4, squared_errors, 1e-11);
    EXPECT_NEAR(v.stat5, plain_separation(left_out, y), 1e-12);
}

// ---- Whole runs

double run(LARS& lars, Values& v) {
    return lars.run(1, &v.stat1, &v.stat2, &v.p, &v.stat4, &v.stat5);
}

TEST(Run, GoldenCase) {
    const std::string data = VORT_TEST_DATA "/lars/data/";
    const TemporaryFolder folder;
    std::filesystem::copy_file(data + "output_X_Y.txt", "a-output_X_Y.txt");
    LARS lars(40, 10, 50, 0);
    lars.datapath = "a-";
    Values v;
    const ConsoleCapture console;
    EXPECT_NEAR(run(lars, v), 0.468898, 5e-7);
    EXPECT_EQ(console.text(), read_file(data + "console.txt"));
    EXPECT_EQ(read_file("a-beta.txt"), read_file(data + "beta.txt"));
    EXPECT_GT(v.stat2, v.stat5) << "left-out individuals separate less well";
    EXPECT_GT(v.stat4, 4.4176031) << "the path's own residual sum of squares";
    EXPECT_LT(v.p, 1e-4);
}

TEST(Run, NothingToReadIsNoResult) {
    for (const auto& [rows, cols] : {std::pair{0, 3}, {3, 0}, {-1, -1}}) {
        LARS lars(rows, cols, 50, 0);
        Values v;
        const ConsoleCapture console;
        EXPECT_EQ(run(lars, v), 2147483647.0);
        EXPECT_EQ(console.text(), "There are error for reading input data\n");
    }
}

TEST(Run, EmptyModelAndCoefficientsThatCannotBeWritten) {
    const TemporaryFolder folder;
    write_file("output_X_Y.txt", "1 1\n-1 0\n1 1\n-1 1\n");
    LARS lars(4, 1, 1, 0), again(4, 1, 50, 0);
    Values v;
    const ConsoleCapture console;
    EXPECT_EQ(run(lars, v), 1.0);
    EXPECT_EQ(read_file("beta.txt"), "1\n0\n");
    EXPECT_TRUE(v.p == 0.5 && v.stat2 == 0.0 && v.stat4 == 4.0 && v.stat5 == 0.0);

    std::filesystem::remove("beta.txt");
    std::filesystem::create_directory("beta.txt");
    v = {};
    run(again, v);
    EXPECT_GT(v.stat4, 0.0) << "goes on";
}

}  // namespace
}  // namespace vort::testing
