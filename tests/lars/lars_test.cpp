// The selector against hand-worked paths, against the plain path, and against a whole run whose
// output is known.

#include "lars/lars.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "lars/plain_path.h"
#include "numeric/random.h"
#include "support/console_capture.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::ExitedWithCode;
using ::testing::StartsWith;

std::vector<double*> pointers(Columns& columns) {
    std::vector<double*> result;
    for (auto& column : columns) result.push_back(column.data());
    return result;
}

LARS selector_for(const Path& p) {
    return LARS(static_cast<int>(p.y.size()), static_cast<int>(p.x.size()), p.limit, 0);
}

void walk(Path& p) {
    const ConsoleCapture console;
    p.ratio = selector_for(p).fos(pointers(p.x).data(), p.y.data(), pointers(p.e).data(),
                                  p.beta.data(), &p.stop);
    p.printed = console.text();
}

void show_console_on_standard_error() {
    std::cout.rdbuf(std::cerr.rdbuf());
}

// ---- Paths worked by hand: sixteen rows, Walsh functions as columns. These are orthonormal and
// every number on the way is exact.

constexpr unsigned kRows = 16;

std::vector<double> walsh(unsigned code, double weight = 1.0) {
    std::vector<double> column;
    for (unsigned i = 0; i < kRows; ++i) {
        column.push_back(std::popcount(i & code) % 2 == 0 ? weight / 4 : -weight / 4);
    }
    return column;
}

struct Term {
    unsigned code;
    double weight;
};

Path walsh_path(const std::vector<unsigned>& codes, const std::vector<Term>& response,
                int limit = 50) {
    Columns columns;
    for (const unsigned code : codes) columns.push_back(walsh(code));
    std::vector<double> y(kRows, 0.0);
    for (const Term& term : response) {
        const std::vector<double> part = walsh(term.code, term.weight);
        for (unsigned i = 0; i < kRows; ++i) y[i] += part[i];
    }
    return Path(columns, y, limit);
}

TEST(StagewisePath, WorkedByHand) {
    const std::vector<Term> three = {{1, 8}, {2, -4}, {4, 2}, {8, 1}};
    const struct {
        const char* name;
        std::vector<unsigned> columns;
        std::vector<Term> response;
        int limit;
        double ratio;
        int stop;
        std::vector<double> beta;
        const char* first_entry;
    } cases[] = {
        // Sums of squares 85, 21, 5, 1, so Cp = 1020, 252.5, 61, 13.5.
        {"one negative", {1, 2, 4}, three, 50, 13.5 / 1020, 3, {8, -4, 2}, "positive"},
        {"one step", {1, 2, 4}, three, 2, 14.5 / (14.0 * 85 / 21), 1, {8, 0, 0}, "positive"},
        {"tie", {2, 1}, {{1, 4}, {2, 4}, {8, 1}}, 50, 14.0 / 429, 2, {4, 4}, "positive"},
        {"tie, signs", {2, 1}, {{1, 4}, {2, -4}, {8, 1}}, 50, 14.0 / 429, 2, {-4, 4}, "negative"},
        // 14 * 29 / 28 = 14 * 28 / 28 + 0.5.
        {"equal Cp", {1}, {{1, 1}, {3, 5}, {5, 1}, {6, 1}, {8, 1}}, 50, 1.0, 0, {0}, "positive"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Path path = walsh_path(c.columns, c.response, c.limit);
        walk(path);
        EXPECT_DOUBLE_EQ(path.ratio, c.ratio);
        EXPECT_EQ(path.stop, c.stop);
        EXPECT_EQ(path.beta, c.beta);
        EXPECT_THAT(path.printed,
                    StartsWith(std::string("find ") + c.first_entry + " coefficient at 0 "));
    }
}

TEST(StagewisePath, NoStepAllowed) {
    for (const int limit : {1, 0, -3}) {
        Path path = walsh_path({1, 2}, {{1, 8}, {2, 4}}, limit);
        walk(path);
        EXPECT_EQ(path.printed, "Cp[0]=15\nstopstep=0\nCp return value=1\n");
        EXPECT_EQ(path.beta, (std::vector<double>{0, 0}));
    }
}

TEST(StagewisePath, OnlyAColumnThatNeverEntersEndsNegated) {
    Path path = walsh_path({1, 2}, {{1, -8}, {2, -4}, {8, 1}}, 2);
    walk(path);
    EXPECT_EQ(path.x, (Columns{walsh(1), walsh(2, -1)}));
    EXPECT_EQ(path.beta, (std::vector<double>{-8, 0}));
}

TEST(StagewisePath, ResidualVanishes) {
    Path none = walsh_path({1}, {});
    walk(none);
    EXPECT_EQ(none.printed, "Residual prediction error vector E[0] is zero, at 0 step !\n");
    EXPECT_EQ(none.ratio, 0.0);
    EXPECT_EQ(none.stop, -1) << "must stay as the caller set it";

    Path turned = walsh_path({1, 2}, {{1, -8}});
    walk(turned);
    EXPECT_THAT(turned.printed, EndsWith("vector E[1] is zero, at 1 step !\n"));
    EXPECT_EQ(turned.ratio, 0.0);
    EXPECT_EQ(turned.beta, (std::vector<double>{8, 0}));
    EXPECT_EQ(turned.x, (Columns{walsh(1, -1), walsh(2)}));

    Path last_column = walsh_path({1}, {{1, 8}});
    walk(last_column);
    EXPECT_THAT(last_column.printed, EndsWith("Cp[0]=inf\nCp[1]=-nan\nstopstep=0\n"
                                              "Cp return value=-nan\n"));
}

TEST(StagewisePath, ColumnThatCannotEnterEndsTheProgram) {
    const auto run_into_it = [] {
        show_console_on_standard_error();
        Path path = walsh_path({1, 2}, {{1, 8}, {8, 1}});
        std::fill(path.x[1].begin(), path.x[1].end(), 0.0);
        selector_for(path).fos(pointers(path.x).data(), path.y.data(), pointers(path.e).data(),
                               path.beta.data(), &path.stop);
    };
    EXPECT_EXIT(run_into_it(), ExitedWithCode(0), "maybe have some error, because beta");
}

// ---- Random paths

std::vector<std::uint64_t> bits(const std::vector<double>& values) {
    std::vector<std::uint64_t> result;
    for (const double v : values) {
        result.push_back(std::isnan(v) ? ~0ULL : std::bit_cast<std::uint64_t>(v));
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
    selector_for(path).lars_init(pointers(path.x).data(), path.y.data(), 0);
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
        ASSERT_EQ(bits({fast.ratio}), bits({plain.ratio}));
        ASSERT_EQ(fast.stop, plain.stop);
        ASSERT_EQ(bits(fast.beta), bits(plain.beta));
        for (std::size_t j = 0; j < fast.x.size(); ++j)
            ASSERT_EQ(bits(fast.x[j]), bits(plain.x[j]));
        for (std::size_t k = 0; k < fast.e.size(); ++k)
            ASSERT_EQ(bits(fast.e[k]), bits(plain.e[k]));
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
    EXPECT_EQ(LARS(5, 2, 50, 0).lars_init(pointers(x).data(), y.data(), 0), 0);
    // sqrt(k (n - k) / n) for k ones among n.
    EXPECT_EQ(console.text(),
              "i=1\nmean=0.400000\nVarance=1.095445\ni=2\nmean=1.000000\nVarance=0.000000\n"
              "Y >0 count=2 mean=0.5\n");
    EXPECT_NEAR(x[0][0], 0.6 / std::sqrt(1.2), 1e-15);
    EXPECT_EQ(x[1], std::vector<double>(5, 0.0));
    EXPECT_EQ(y, (std::vector<double>{0.5, -1, -0.5, 1.5, -0.5}));
}

TEST(Normalisation, StrictRefusesAConstantColumn) {
    Columns x = {{1, 0}, {3, 3}, {0, 1}};
    std::vector<double> y = {1, 0};
    const ConsoleCapture console;
    EXPECT_EQ(LARS(2, 3, 50, 0).lars_init(pointers(x).data(), y.data(), 1), -1);
    EXPECT_THAT(console.text(), EndsWith("There are some error for variable X_T[1], all coordinate "
                                         "value are zero or one!\n"));
    EXPECT_EQ(y, (std::vector<double>{1, 0})) << "the response comes after the columns";
}

TEST(DesignFile, Layouts) {
    const struct {
        const char* text;
        int header;
        int labels;
    } cases[] = {
        {"0.5 1 0 \n-0.5 0 1 \npara  2 2\n", 0, 0},
        {"0.5 1 0 -0.5\n0 1", 0, 0},
        {"name y x0 x1\n0.5 1 0\n-0.5 0 1\n", 1, 0},
        {"name y x0 x1\na 0.5 1 0\nb -0.5 0 1\n", 1, 1},
        {"a 0.5 1 0\nb -0.5 0 1\n", 0, 1},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        write_file("data.txt", c.text);
        LARS lars(2, 2, 50, 0);
        lars.header_flag = c.header;
        lars.row_label_flag = c.labels;
        Columns x(2, std::vector<double>(2));
        std::vector<double> y(2);
        EXPECT_EQ(lars.ReadDatafromfile(pointers(x).data(), y.data(), "data.txt", 2), 0);
        EXPECT_EQ(y, (std::vector<double>{0.5, -0.5}));
        EXPECT_EQ(x, (Columns{{1, 0}, {0, 1}}));
    }
}

TEST(DesignFile, WhatCannotBeReadEndsTheProgram) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder.txt");
    write_file("short.txt", "0.5 1\n");
    write_file("word.txt", "0.5 x 0 -0.5 0 1\n");
    write_file("empty.txt", "");
    const auto read = [](const std::string& name) {
        show_console_on_standard_error();
        Columns x(2, std::vector<double>(2));
        std::vector<double> y(2);
        LARS(2, 2, 50, 0).ReadDatafromfile(pointers(x).data(), y.data(), name.c_str(), 2);
    };
    for (const std::string name : {"missing.txt", "folder.txt"}) {
        const std::string message = "^When open file " + name + ", find error\n";
        EXPECT_EXIT(read(name), ExitedWithCode(0), message);
    }
    for (const std::string name : {"short.txt", "word.txt", "empty.txt"}) {
        const std::string messages =
            name + ":[12]: .*expected a number(.|\n)*find error input file=";
        EXPECT_EXIT(read(name), ExitedWithCode(0), messages + name + "\n");
    }
}

TEST(Generator, DrawsNormalisedDataFromTheLibraryGenerator) {
    std::srand(7);
    const std::string coefficient = text_of("%f", 5 * rand2() - 2.5);
    std::srand(7);
    Columns x(3, std::vector<double>(50));
    std::vector<double> y(50);
    const ConsoleCapture console;
    EXPECT_EQ(LARS(50, 3, 50, 1).GenerateModelData(pointers(x).data(), y.data()), 0);
    EXPECT_THAT(console.text(), StartsWith("\n model_var_number=1\nb[0]=" + coefficient +
                                           "\nRatio of Information and Noise = "));
    for (const auto& values : {x[0], x[1], x[2], y}) {
        EXPECT_NEAR(plain_product(values, std::vector<double>(50, 1.0)), 0.0, 1e-12);
        EXPECT_NEAR(plain_product(values, values), 1.0, 1e-12);
    }
}

// ---- Statistics

TEST(CorrectRate, CountsAgreementOfSigns) {
    // Fitted values 1, -1, 0, 0; a fitted 0 counts as positive, a response at the mean never.
    const struct {
        std::vector<double> y;
        double rate;
    } cases[] = {{{2, -2, 1, -1}, 0.75}, {{-2, 2, -1, 1}, 0.25}, {{5, 5, 5, 5}, 0.0}};
    for (const auto& c : cases) {
        Columns x = {{0.5, -0.5, 0, 0}, {7, 7, 7, 7}};
        std::vector<double> y = c.y;
        std::vector<double> beta = {2, -0.0};
        const ConsoleCapture console;
        EXPECT_EQ(LARS(4, 2, 50, 0).correct_error_rate(pointers(x).data(), y.data(), beta.data()),
                  c.rate);
        EXPECT_THAT(console.text(), EndsWith(text_of("correct rate=%g\n", c.rate)));
    }
}

// Least-squares coefficients of columns a and b on the rows but `without` (-1: on all rows).
std::vector<double> least_squares(const std::vector<double>& a, const std::vector<double>& b,
                                  const std::vector<double>& y, int without) {
    double aa = 0, ab = 0, bb = 0, ay = 0, by = 0;
    for (int i = 0; i < static_cast<int>(y.size()); ++i) {
        if (i == without) continue;
        aa += a[i] * a[i];
        ab += a[i] * b[i];
        bb += b[i] * b[i];
        ay += a[i] * y[i];
        by += b[i] * y[i];
    }
    const double d = aa * bb - ab * ab;
    return {(bb * ay - ab * by) / d, (aa * by - ab * ay) / d};
}

double plain_separation(const std::vector<double>& values, const std::vector<double>& y) {
    double sum[2] = {}, squares[2] = {}, n[2] = {};
    for (std::size_t i = 0; i < y.size(); ++i) {
        const int g = y[i] > 0 ? 1 : 0;
        n[g] += 1;
        sum[g] += values[i];
        squares[g] += values[i] * values[i];
    }
    double pooled = 0;
    for (const int g : {0, 1}) pooled += squares[g] - sum[g] * sum[g] / n[g];
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
    const std::vector<double> whole = least_squares(x[0], x[2], y, -1);
    std::vector<double> beta = {whole[0], 0.0, whole[1]};
    std::vector<double> fitted, left_out;
    double squared_errors = 0;
    for (int i = 0; i < 12; ++i) {
        const std::vector<double> again = least_squares(x[0], x[2], y, i);
        fitted.push_back(whole[0] * x[0][i] + whole[1] * x[2][i]);
        left_out.push_back(again[0] * x[0][i] + again[1] * x[2][i]);
        squared_errors += std::pow(left_out.back() - y[i], 2);
    }
    Values v;
    LARS lars(12, 3, 50, 0);
    lars.calculationT(pointers(x).data(), y.data(), 12, 3, beta.data(), &v.stat1, &v.stat2,
                      &v.stat4, &v.stat5);
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
    std::filesystem::create_directory("sub");
    std::filesystem::copy_file(data + "output_X_Y.txt", "sub/a-output_X_Y.txt");
    LARS lars(40, 10, 50, 0);
    lars.datapath = "sub/a-";
    Values v;
    const ConsoleCapture console;
    EXPECT_NEAR(run(lars, v), 0.468898, 5e-7);
    EXPECT_EQ(console.text(), read_file(data + "console.txt"));
    EXPECT_EQ(read_file("sub/a-beta.txt"), read_file(data + "beta.txt"));
    EXPECT_GT(v.stat2, v.stat5) << "left-out individuals separate less well";
    EXPECT_GT(v.stat4, 4.4176031) << "the path's own residual sum of squares";
    EXPECT_LT(v.p, 1e-4);
}

TEST(Run, NothingToReadIsNoResult) {
    const TemporaryFolder folder;
    for (const auto& [rows, cols] : {std::pair{0, 3}, {3, 0}, {-1, -1}}) {
        LARS lars(rows, cols, 50, 0);
        Values v;
        const ConsoleCapture console;
        EXPECT_EQ(run(lars, v), 2147483647.0);
        EXPECT_EQ(console.text(), "There are error for reading input data\n");
        EXPECT_EQ(v.p, -1);
        EXPECT_FALSE(std::filesystem::exists("beta.txt"));
    }
}

TEST(Run, EmptyModel) {
    const TemporaryFolder folder;
    write_file("output_X_Y.txt", "1 1\n-1 0\n1 1\n-1 1\n");
    LARS lars(4, 1, 1, 0);
    Values v;
    const ConsoleCapture console;
    EXPECT_EQ(run(lars, v), 1.0);
    EXPECT_EQ(read_file("beta.txt"), "1\n0\n");
    EXPECT_EQ(v.p, 0.5);
    EXPECT_EQ(v.stat2, 0.0);
    EXPECT_EQ(v.stat4, 4.0);
    EXPECT_EQ(v.stat5, 0.0);
}

TEST(Run, GoesOnWhereTheCoefficientsCannotBeWritten) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("beta.txt");
    write_file("output_X_Y.txt", "1 1\n-1 0\n1 1\n-1 1\n");
    LARS lars(4, 1, 50, 0);
    Values v;
    const ConsoleCapture console;
    run(lars, v);
    EXPECT_EQ(v.stat1, 0.5);
    EXPECT_EQ(lars.writebetatofile(std::vector<double>{1.0}.data()), -1);
}

}  // namespace
}  // namespace vort::testing
