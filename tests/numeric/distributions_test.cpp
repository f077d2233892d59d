#include "numeric/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vort {
namespace {

constexpr double kAccuracy = 3e-7;

// Percentage points of the chi-square distribution as printed in tables (six decimals; E. S.
// Pearson and H. O. Hartley, Biometrika Tables for Statisticians I, table 8, carried further).
TEST(LowerTailChiSquare, MeetsTabulatedPointsAndClosedForms) {
    const struct {
        int df;
        double x, lower_tail;
    } points[] = {
        {1, 3.841459, 0.95}, {1, 10.827566, 0.999},   {2, 5.991465, 0.95}, {8, 15.507313, 0.95},
        {8, 2.732637, 0.05}, {100, 124.342113, 0.95}, {1, 0, 0},           {1, 200, 1}};
    for (const auto& [df, x, lower_tail] : points) {
        const Tail tail = lower_tail_chi_square(df, x);
        EXPECT_NEAR(tail.value, lower_tail, kAccuracy) << "df=" << df << " x=" << x;
        EXPECT_EQ(tail.warning, nullptr);
    }
    for (double x = 0.01; x < 80.0; x *= 1.37) {
        const double half = x / 2.0;
        EXPECT_NEAR(lower_tail_chi_square(1, x).value, std::erf(std::sqrt(half)), kAccuracy) << x;
        EXPECT_NEAR(lower_tail_chi_square(2, x).value, -std::expm1(-half), kAccuracy) << x;
    }
}

TEST(LowerTailGamma, WarnsAndGoesOnWhereItDoesNotConverge) {
    const Tail partial = lower_tail_gamma(1e5, 1e5);  // the whole series gives 0.5004
    EXPECT_TRUE(0.1 < partial.value && partial.value < 0.5) << partial.value;
    EXPECT_STREQ(partial.warning, "a too large, ITMAX too small in routing gser\n");
    const Tail fraction = lower_tail_gamma(1e6, 1e6 + 2.0);
    EXPECT_TRUE(std::isfinite(fraction.value));
    EXPECT_STREQ(fraction.warning, "a too large, ITMAX too small in gcf\n");
    const Tail none = lower_tail_chi_square(1, std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(std::isnan(none.value));
    EXPECT_STREQ(none.warning, fraction.warning);
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

}  // namespace
}  // namespace vort
