#include "numeric/random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <vector>

#include "numeric/deviates.h"
#include "numeric/distributions.h"
#include "support/console_capture.h"

namespace vort {
namespace {

using ::testing::ElementsAre;

// Each test starts from the fixed seeds, so none of them depends on another.
class RandomTest : public ::testing::Test {
  protected:
    void SetUp() override { init_rand1(); }
};

using Rand1 = RandomTest;
using Shuffles = RandomTest;
using Deviates = RandomTest;

// The state after `draws` numbers, by the powers of the multipliers.
std::vector<int> state_after(long draws) {
    long x = 1;
    long y = 3;
    long z = 5;
    for (long i = 0; i < draws; ++i) {
        x = x * 171 % 30269;
        y = y * 172 % 30309;
        z = z * 170 % 30323;
    }
    return {static_cast<int>(x), static_cast<int>(y), static_cast<int>(z)};
}

std::vector<int> state() {
    return {RX, RY, RZ};
}

// The fractions computed with whole numbers and rounded once.
TEST_F(Rand1, StartsWithKnownNumbers) {
    for (const double expected : {0.050705517581820986, 0.6596366254125381, 0.9607424544289321,
                                  0.8329544915584348, 0.5685944625394854}) {
        EXPECT_DOUBLE_EQ(rand1(), expected);
    }
    for (int i = 5; i < 999; ++i) rand1();
    EXPECT_EQ(rand1(), 0.13549605382579522);
    EXPECT_EQ(state(), (std::vector{9292, 8811, 16308}));
    init_rand1();
    EXPECT_EQ(state(), (std::vector{1, 3, 5}));
    EXPECT_EQ(rand1(), 0.050705517581820986);
}

// Kolmogorov's distance between a sample and a distribution function; sqrt(n) times it exceeds 1.95
// once in a thousand samples, and these samples are always the same.
double distance(std::vector<double> sample, const std::function<double(double)>& cumulative) {
    std::sort(sample.begin(), sample.end());
    const double n = static_cast<double>(sample.size());
    double largest = 0.0;
    for (std::size_t i = 0; i < sample.size(); ++i) {
        const double p = cumulative(sample[i]);
        const double below = static_cast<double>(i) / n;
        largest = std::max({largest, p - below, below + 1.0 / n - p});
    }
    return largest * std::sqrt(n);
}

std::vector<double> sample_of(int n, const std::function<double()>& draw) {
    std::vector<double> sample(n);
    std::generate(sample.begin(), sample.end(), draw);
    return sample;
}

TEST_F(Rand1, IsUniform) {
    const std::vector<double> sample = sample_of(50000, rand1);
    EXPECT_GE(*std::min_element(sample.begin(), sample.end()), 0.0);
    EXPECT_LT(*std::max_element(sample.begin(), sample.end()), 1.0);
    EXPECT_LT(distance(sample, [](double x) { return x; }), 1.95);
}

TEST_F(Rand1, SecondGeneratorFollowsTheLibrary) {
    std::srand(5);
    const int first = std::rand();
    std::srand(5);
    EXPECT_EQ(rand2(), first / 2147483647.0);
    EXPECT_EQ(state(), state_after(0));
}

std::vector<int> random_order(int n) {
    std::vector<int> out(n + 2, -7);
    randomsort(n, out.data());
    EXPECT_EQ(out.front(), -7);
    EXPECT_EQ(out.back(), -7);
    return {out.begin() + 1, out.end() - 1};
}

// Drawn from a list by hand: 0.0507 * 10 takes place 1, 0.6596 * 9 place 6 of what is left, ...
TEST_F(Shuffles, DrawWithoutReplacement) {
    EXPECT_THAT(random_order(10), ElementsAre(1, 7, 10, 8, 5, 9, 3, 4, 2, 6));
    EXPECT_THAT(random_order(10), ElementsAre(8, 6, 9, 2, 1, 5, 4, 3, 7, 10));
    EXPECT_EQ(state(), state_after(20));
    EXPECT_THAT(random_order(1), ElementsAre(1));
    EXPECT_EQ(state(), state_after(21));
    EXPECT_TRUE(random_order(0).empty());
    EXPECT_EQ(state(), state_after(21));
}

TEST_F(Shuffles, HoldEveryElementOnce) {
    for (const int n : {2, 63, 64, 65, 5000}) {
        std::vector<int> order = random_order(n);
        std::sort(order.begin(), order.end());
        for (int i = 0; i < n; ++i) ASSERT_EQ(order[i], i + 1) << "n=" << n;
    }
}

TEST_F(Shuffles, PermuteAPhenotype) {
    std::vector<short> y = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    EXPECT_EQ(permutation1(y.data(), 10), 0);
    EXPECT_THAT(y, ElementsAre(10, 70, 100, 80, 50, 90, 30, 40, 20, 60));

    std::vector<short> equal(4, 1);
    permutation1(equal.data(), 4);
    EXPECT_EQ(equal, std::vector<short>(4, 1));
    EXPECT_EQ(state(), state_after(14));
    EXPECT_EQ(permutation1(equal.data(), 0), 0);
    EXPECT_EQ(state(), state_after(14));
}

TEST_F(Deviates, NormalStartsWithKnownNumbers) {
    EXPECT_NEAR(nrandom(0.0, 1.0), -0.41067583453910017, 1e-15);
    EXPECT_NEAR(nrandom(5.0, 2.0), 5.0 + 2.0 * 0.08346656158964563, 1e-14);
    EXPECT_NEAR(nrandom(0.0, 1.0), -1.071200020774139, 1e-14);
    EXPECT_EQ(state(), (std::vector{20829, 4920, 15476})) << "pairs are dropped, not kept";
}

// A separate computation of both methods; the second gamma of shape 6 takes one round of three.
TEST_F(Deviates, GammaChangesItsMethodAtShapeSix) {
    EXPECT_NEAR(llgamma(5, 2.0), 2.0925998508333974, 1e-14);
    EXPECT_EQ(state(), state_after(5));
    init_rand1();
    EXPECT_NEAR(llgamma(6, 2.0), 2.77312668008298, 1e-14);
    EXPECT_NEAR(llgamma(6, 2.0), 1.3982856263254853, 1e-14);
    EXPECT_EQ(state(), state_after(9));
}

TEST_F(Deviates, FollowTheirDistributions) {
    constexpr int kSample = 20000;
    EXPECT_LT(distance(sample_of(kSample, [] { return nrandom(1.0, 3.0); }),
                       [](double x) { return pnormal((x - 1.0) / 3.0); }),
              1.95);
    for (const int df : {1, 4}) {
        EXPECT_LT(distance(sample_of(kSample, [df] { return chisq(df); }),
                           [df](double x) { return pchisq(df, x); }),
                  1.95)
            << "df=" << df;
    }
    for (const int shape : {1, 5, 6, 40}) {  // a product below 6, rejection from there on
        EXPECT_LT(distance(sample_of(kSample, [shape] { return llgamma(shape, 2.0); }),
                           [shape](double x) { return gammp(shape, x * 2.0); }),
                  1.95)
            << "shape=" << shape;
    }
}

TEST_F(Deviates, PoissonHasItsProbabilitiesAndItsCap) {
    constexpr int kSample = 40000;
    std::vector<int> seen(4, 0);
    for (int i = 0; i < kSample; ++i) {
        const int value = rpoisson(1.5, 3);
        ASSERT_TRUE(0 <= value && value <= 3);
        ++seen[value];
    }
    const double none = std::exp(-1.5);
    const double probability[] = {none, 1.5 * none, 1.125 * none, 1.0 - 3.625 * none};
    for (int value = 0; value <= 3; ++value) {
        const double p = probability[value];
        const double error = std::sqrt(p * (1.0 - p) / kSample);
        EXPECT_NEAR(seen[value] / double{kSample}, p, 4.0 * error) << "value " << value;
    }
    EXPECT_EQ(rpoisson(50.0, 0), 0);
    const std::vector<int> before = state();
    EXPECT_EQ(rpoisson(50.0, -1), -1);
    EXPECT_EQ(state(), before);
}

TEST_F(Deviates, DirichletAveragesToItsParameters) {
    constexpr int kSample = 20000;
    int alpha[] = {-7, 1, 2, 5};
    std::vector<double> mean(4, 0.0);
    for (int i = 0; i < kSample; ++i) {
        std::vector<double> p(5, -7.0);
        Dirichlet(p.data(), alpha, 3);
        ASSERT_EQ(p.front(), -7.0);
        ASSERT_EQ(p.back(), -7.0);
        ASSERT_NEAR(p[1] + p[2] + p[3], 1.0, 1e-15);
        for (int j = 1; j <= 3; ++j) mean[j] += p[j] / kSample;
    }
    for (int j = 1; j <= 3; ++j) EXPECT_NEAR(mean[j], alpha[j] / 8.0, 0.005) << j;
}

std::vector<int> counts_of(int n, std::vector<double> p) {
    const int k = static_cast<int>(p.size());
    p.insert(p.begin(), -7.0);
    std::vector<int> counts(k + 2, -7);
    multinomial(n, p.data(), counts.data(), k);
    EXPECT_EQ(counts.front(), -7);
    EXPECT_EQ(counts.back(), -7);
    return {counts.begin() + 1, counts.end() - 1};
}

TEST_F(Deviates, MultinomialCountsEveryDrawButTwoKinds) {
    // The first five numbers are 0.0507, 0.6596, 0.9607, 0.8330, 0.5686.
    EXPECT_THAT(counts_of(5, {0.1, 0.5, 0.3, 0.1}), ElementsAre(1, 1, 2, 1));
    init_rand1();
    EXPECT_THAT(counts_of(5, {0.1, 0.5, 0.3}), ElementsAre(1, 1, 2)) << "one above the last bound";
    const double first = 0.050705517581820986;
    init_rand1();
    EXPECT_THAT(counts_of(1, {first, 1.0 - first}), ElementsAre(0, 0)) << "equal to the first";
    init_rand1();
    EXPECT_THAT(counts_of(1, {0.0, first, 0.5}), ElementsAre(0, 1, 0)) << "equal to the second";
    EXPECT_THAT(counts_of(0, {0.5, 0.5}), ElementsAre(0, 0));
}

TEST_F(Deviates, InvalidParameters) {
    EXPECT_EXIT((std::cout.rdbuf(std::cerr.rdbuf()), chisq(0)), ::testing::ExitedWithCode(1),
                ::testing::HasSubstr("The freedom of chi-square must be positive integer!\n"));
    const vort::testing::ConsoleCapture console;
    EXPECT_EQ(llgamma(0, 1.0), 0.0);
    EXPECT_EQ(console.text(), "shape parameter must be greater than 1\n");
    EXPECT_EQ(state(), state_after(0));
}

}  // namespace
}  // namespace vort
