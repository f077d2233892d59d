#include "screening/five_model_test.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "numeric/distributions.h"
#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

constexpr double kAccuracy = 3e-7;  // of the incomplete gamma function

// Upper tails of the chi-square distribution in closed form.
double tail(int df, double statistic) {
    return df == 1 ? std::erfc(std::sqrt(statistic / 2)) : std::exp(-statistic / 2);
}

using Pvalues = std::array<double, 4>;

Pvalues tested(const GenotypeCounts& a, const GenotypeCounts& b) {
    Pvalues p;
    five_model_pvalues(a, b, std::accumulate(a.count, a.count + 4, 0),
                       std::accumulate(b.count, b.count + 4, 0), p.data());
    return p;
}

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
        {"all 0", {{5, 0, 0, 0}}, {{7, 0, 0, 1}}, {none, none, none, 1.0}},
        {"all 1", {{0, 5, 0, 0}}, {{0, 7, 0, 0}}, {1.0, none, none, 1.0}},
        {"all 2", {{0, 0, 5, 0}}, {{0, 0, 7, 1}}, {none, none, none, 1.0}},
        {"no genotyped case", {{0, 0, 0, 9}}, {{3, 4, 2, 0}}, {1.0, 1.0, 1.0, 1.0}},
    };
    for (const auto& row : rows) {
        const Pvalues p = tested(row.a, row.b);
        for (int model = 0; model < 4; ++model) {
            EXPECT_NEAR(p[model], row.expected[model], kAccuracy) << row.name << ' ' << model;
        }
    }
}

// The formulas once more, a term at a time, to the last bit.
Pvalues long_form(const GenotypeCounts& in_cases, const GenotypeCounts& in_controls) {
    const int* a = in_cases.count;
    const int* b = in_controls.count;
    const int R = a[0] + a[1] + a[2];
    const int S = b[0] + b[1] + b[2];
    if (R == 0 || S == 0) return {1.0, 1.0, 1.0, 1.0};
    Pvalues result;
    const int minor[3][2] = {
        {2 * a[2] + a[1], 2 * b[2] + b[1]}, {a[2] + a[1], b[2] + b[1]}, {a[2], b[2]}};
    for (int model = 0; model < 3; ++model) {
        const double cases = model == 0 ? 2.0 * R : R;
        const double controls = model == 0 ? 2.0 * S : S;
        const double p = minor[model][0] / cases;
        const double q = minor[model][1] / controls;
        const long long sum = minor[0][0] + minor[0][1];
        double first = 1 / (p / controls + q / cases);
        if (model == 0) first = sum == 0 ? 0.0 : static_cast<double>(4LL * R * S / sum);
        double statistic = (p - q) * (p - q) * (first + 1 / ((1 - p) / controls + (1 - q) / cases));
        if ((p <= 0 && q <= 0) || (p >= 1 && q >= 1)) statistic = 0.0001;
        result[model] = 1 - pchisq(1, statistic);
    }
    double statistic = 0;
    int classes = 0;
    for (const int g : {2, 1, 0}) {
        const double p = a[g] / static_cast<double>(R);
        const double q = b[g] / static_cast<double>(S);
        const bool occurs = a[g] + b[g] > 0;
        statistic += occurs ? (p - q) * (p - q) / (q / R + p / S) : 0.0001;
        classes += occurs ? 1 : 0;
    }
    result[3] = classes < 2 ? 1.0 : 1 - pchisq(classes - 1, statistic);
    return result;
}

TEST(FiveModels, RandomTablesToTheLastBit) {
    for (unsigned seed = 1; seed <= 20000; ++seed) {
        std::mt19937 random(seed);
        GenotypeCounts a, b;
        const unsigned most = 1U << (random() % 11);
        for (int g = 0; g < 4; ++g) {
            a.count[g] = random() % 5 == 0 ? 0 : static_cast<int>(random() % most);
            b.count[g] = random() % 5 == 0 ? 0 : static_cast<int>(random() % most);
        }
        ASSERT_EQ(tested(a, b), long_form(a, b)) << "seed " << seed;
    }
}

class CalculatePvalues : public ScreeningTest {};

TEST_F(CalculatePvalues, CountsOneColumn) {
    samplesize[0] = 5;
    samplesize[1] = 3;
    char codes[8][2] = {{0, 1}, {1, 2}, {1, -1}, {1, 0}, {1, 2}, {1, -1}, {1, -1}, {1, 0}};
    std::vector<char*> rows;
    for (auto& row : codes) rows.push_back(row);
    short phenotypes[8] = {1, 1, 1, 0, 2, 0, -1, 0};  // all that is not 1 is a control
    Pvalues pvalue;
    int a[4], b[4];
    EXPECT_EQ(calculate_pvalue4_and_freq(phenotypes, rows.data(), 0, 8, 1, pvalue.data(), a, b),
              pvalue[0]);
    EXPECT_EQ(std::vector<int>(a, a + 4), (std::vector<int>{0, 1, 1, 1}));
    EXPECT_EQ(std::vector<int>(b, b + 4), (std::vector<int>{2, 0, 1, 2}));
    EXPECT_EQ(pvalue, tested({{0, 1, 1, 1}}, {{2, 0, 1, 2}}));
}

}  // namespace
}  // namespace vort::testing
