#include "numeric/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "numeric/chi_square_lanes.h"
#include "support/instruction_sets.h"

namespace vort {
namespace {

constexpr double kAccuracy = 3e-7;

// Percentage points of the chi-square distribution as printed in tables (six decimals; E. S.
// Pearson and H. O. Hartley, Biometrika Tables for Statisticians I, table 8, carried further).
TEST(LowerTailChiSquare, MeetsTabulatedPointsAndClosedForms) {
    const struct {
        int df;
        double x, lower_tail;
    } points[] = {{1, 3.841459, 0.95},  {1, 10.827566, 0.999}, {2, 5.991465, 0.95},
                  {8, 15.507313, 0.95}, {8, 2.732637, 0.05},   {100, 124.342113, 0.95}};
    for (const auto& [df, x, lower_tail] : points) {
        EXPECT_NEAR(lower_tail_chi_square(df, x).value, lower_tail, kAccuracy) << df << ' ' << x;
    }
    for (double x = 0.0; x < 80.0; x = 1.37 * x + 0.01) {
        const Tail one = lower_tail_chi_square(1, x), two = lower_tail_chi_square(2, x);
        EXPECT_NEAR(one.value, std::erf(std::sqrt(x / 2.0)), kAccuracy) << x;
        EXPECT_NEAR(two.value, -std::expm1(-x / 2.0), kAccuracy) << x;
        EXPECT_TRUE(one.warning == nullptr && two.warning == nullptr);
    }
}

TEST(LowerTailGamma, WarnsAndGoesOnWhereItDoesNotConverge) {
    const Tail partial = lower_tail_gamma(1e5, 1e5);  // the whole series gives 0.5004
    EXPECT_TRUE(0.1 < partial.value && partial.value < 0.5) << partial.value;
    EXPECT_STREQ(partial.warning, "a too large, ITMAX too small in routing gser\n");
    const Tail none = lower_tail_chi_square(1, std::nan(""));
    EXPECT_TRUE(std::isnan(none.value) && std::isfinite(lower_tail_gamma(1e6, 1e6 + 2.0).value));
    EXPECT_STREQ(none.warning, "a too large, ITMAX too small in gcf\n");
}

// The series summed with 50 digits for the coefficients as they stand here; the usual fourth
// coefficient gives ln Gamma(0.5) = 0.57236494292474 and ln Gamma(1) = 0.
TEST(Gammln, KeepsItsOwnFourthCoefficient) {
    EXPECT_NEAR(gammln(0.5), 0.57236494292519839, 2e-14);
    EXPECT_NEAR(gammln(1.0), 6.0694476e-13, 2e-14);
    for (double x = 0.5; x < 300.0; x *= 1.5) {
        EXPECT_NEAR(gammln(x), std::lgamma(x), 1e-11 * std::fmax(1.0, std::lgamma(x))) << x;
    }
}

// Many at once against one at a time, bit for bit: around the point where the series hands over to
// the continued fraction, and anywhere.
TEST(ChiSquareQueue, GivesTheUpperTailsOfThePlainForm) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> exponent(-12, 8);
    for (const Instructions instructions : vort::testing::instruction_sets()) {
        ChiSquareQueue queue(instructions, 100);
        for (std::size_t size = 4; size < 44; ++size) {
            std::vector<double> asked = {2.9999999999999996, 4, 3.0000000000000004, 3, 0};
            while (asked.size() < size) asked.push_back(std::exp2(exponent(random)));
            const auto df = [](std::size_t k) { return k < 4 ? 1 : 1 + static_cast<int>(k % 2); };
            for (std::size_t k = 0; k < asked.size(); ++k) {
                queue.add(df(k), asked[k], static_cast<int>(k));
                queue.add_if(false, df(k), asked[k], -1);
            }
            std::vector<int> received(asked.size());
            const auto receive = [&](std::size_t k, double pvalue) {
                ++received.at(k);
                EXPECT_EQ(pvalue, 1 - lower_tail_chi_square(df(k), asked[k]).value) << asked[k];
            };
            queue.take_eights(receive);
            queue.take(receive);
            EXPECT_EQ(received, std::vector<int>(asked.size(), 1));
        }
    }
}

}  // namespace
}  // namespace vort
