#include "screening/five_model_test.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace vort::testing {
namespace {

constexpr double kAccuracy = 3e-7;  // of the incomplete gamma function

// Upper tails of the chi-square distribution in closed form.
double tail(int df, double statistic) {
    return df == 1 ? std::erfc(std::sqrt(statistic / 2)) : std::exp(-statistic / 2);
}

using Pvalues = std::array<double, kModels>;

// Statistics worked out by hand as fractions.
TEST(FiveModels, HandWorkedTables) {
    const double none = tail(1, 0.0001);
    const double d = 100.0 / 200000;
    const Pvalues crossed = {tail(1, 10.68), tail(1, 6.0), tail(1, 75.0 / 11), tail(2, 9.0)};
    const struct {
        const char* name;
        GenotypeCounts a, b;
        Pvalues expected;
    } rows[] = {
        // p = 0.8, q = 0.7: 0.01 (K + 400), K = 40000 / 300 cut to 133. Carriers do not differ.
        {"integer quotient",
         {{10, 20, 70, 0}},
         {{10, 40, 50, 0}},
         {tail(1, 5.33), 1.0, tail(1, 0.04 * (1 / 0.012 + 1 / 0.008)),
          tail(2, 0.04 / 0.012 + 0.04 / 0.006)}},
        // 4 R S = 4e10 needs 64 bits.
        {"large quotient",
         {{40000, 60000, 0, 0}},
         {{40100, 59900, 0, 0}},
         {tail(1, d * d * (333611 + 200000 / (0.7 + 0.7005))),
          tail(1, 4 * d * d * 1e5 * (1 / 1.199 + 1 / 0.801)), none,
          tail(1, 4 * d * d * 1e5 * (1 / 1.199 + 1 / 0.801) + 0.0001)}},
        // Unequal groups tell p / S from p / R: 0.04 (142 + 125), 0.04 (50 + 100), 75 / 11, 5 + 4.
        {"missing genotypes in no size", {{10, 20, 20, 7}}, {{40, 40, 20, 90}}, crossed},
        // p = 0.4, q = 0.8: K = 100 / 6 cut to 16; the absent class adds 0.0001, no freedom.
        {"two classes",
         {{3, 2, 0, 0}},
         {{1, 4, 0, 0}},
         {tail(1, 0.04 * (16 + 1 / 0.14)), tail(1, 0.16 * (1 / 0.24 + 1 / 0.16)), none,
          tail(1, 2.0 / 3 + 1 + 0.0001)}},
        {"all 1", {{0, 5, 0, 0}}, {{0, 7, 0, 0}}, {1.0, none, none, 1.0}},
        {"all 2", {{0, 0, 5, 0}}, {{0, 0, 7, 1}}, {none, none, none, 1.0}},
        {"no genotyped case", {{0, 0, 0, 9}}, {{3, 4, 2, 0}}, {1.0, 1.0, 1.0, 1.0}},
    };
    const auto size = [](const GenotypeCounts& group) {
        return std::accumulate(group.count.begin(), group.count.end(), 0);
    };
    for (const auto& row : rows) {
        const Pvalues p = five_model_pvalues({row.a, row.b}, size(row.a), size(row.b));
        for (int model = 0; model < kModels; ++model) {
            EXPECT_NEAR(p[model], row.expected[model], kAccuracy) << row.name << ' ' << model;
        }
    }
}

}  // namespace
}  // namespace vort::testing
