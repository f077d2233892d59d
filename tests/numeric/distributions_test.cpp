#include "numeric/distributions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <iostream>
#include <limits>
#include <string>
#include <utility>

#include "support/console_capture.h"

namespace vort {
namespace {

constexpr double kAccuracy = 3e-7;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

struct Incomplete {
    Incomplete(void (*form)(double*, double, double, double*), double a, double x) {
        form(&value, a, x, &gln);
    }
    double value = 0.0, gln = 0.0;
};

// Percentage points of the chi-square distribution as printed in tables (six decimals; E. S.
// Pearson and H. O. Hartley, Biometrika Tables for Statisticians I, table 8, carried further).
TEST(Pchisq, MeetsTabulatedPointsAndClosedForms) {
    struct Case {
        int df;
        double x, lower_tail;
    };
    for (const Case& c :
         {Case{1, 3.841459, 0.95}, Case{1, 10.827566, 0.999}, Case{2, 5.991465, 0.95},
          Case{8, 15.507313, 0.95}, Case{8, 2.732637, 0.05}, Case{100, 124.342113, 0.95}}) {
        EXPECT_NEAR(pchisq(c.df, c.x), c.lower_tail, kAccuracy) << "df=" << c.df << " x=" << c.x;
    }
    for (double x = 0.01; x < 80.0; x *= 1.37) {
        const double half = x / 2.0;
        EXPECT_NEAR(pchisq(1, x), std::erf(std::sqrt(half)), kAccuracy) << x;
        EXPECT_NEAR(pchisq(2, x), -std::expm1(-half), kAccuracy) << x;
    }
    for (double z = -6.0; z <= 6.0; z += 0.37) {
        EXPECT_NEAR(pnormal(z), 0.5 * std::erfc(-z / std::sqrt(2.0)), kAccuracy) << z;
    }
    EXPECT_EQ(pchisq(1, 0.0), 0.0);
    EXPECT_EQ(pchisq(1, 200.0), 1.0);
}

// p-values far out are what a genome-wide scan looks for; there 1 - P is all cancellation, but Q
// itself must keep its relative accuracy.
TEST(Gcf, KeepsTheRelativeAccuracyOfSmallTails) {
    for (const double x : {10.0, 50.0, 200.0, 600.0}) {
        const Incomplete q(gcf, 0.5, x);
        EXPECT_NEAR(q.value / std::erfc(std::sqrt(x)), 1.0, kAccuracy) << x;
        EXPECT_NEAR(q.gln, std::log(std::sqrt(std::acos(-1.0))), 1e-11);
    }
}

TEST(Gammp, UsesTheContinuedFractionFromItsBoundaryOn) {
    const double a = 0.5, x = 1.5, below = std::nextafter(x, 0.0);
    const double fraction = 1.0 - Incomplete(gcf, a, x).value;
    ASSERT_NE(Incomplete(gser, a, x).value, fraction) << "the forms must differ to tell";
    EXPECT_EQ(gammp(a, x), fraction);
    EXPECT_EQ(gammp(a, below), Incomplete(gser, a, below).value);
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

TEST(Gammp, WarnsAndGoesOnWhereItDoesNotConverge) {
    const std::string series = "a too large, ITMAX too small in routing gser\n";
    const std::string fraction = "a too large, ITMAX too small in gcf\n";
    const vort::testing::ConsoleCapture console;
    const double partial = gammp(1e5, 1e5);  // the whole series gives 0.5004
    EXPECT_TRUE(0.1 < partial && partial < 0.5) << partial;
    EXPECT_EQ(console.text(), series);
    EXPECT_TRUE(std::isfinite(gammp(1e6, 1e6 + 2.0)));
    EXPECT_TRUE(std::isnan(pchisq(1, kNan)));
    EXPECT_TRUE(std::isnan(Incomplete(gser, 0.5, kNan).value));
    EXPECT_EQ(console.text(), series + fraction + fraction + series);
}

TEST(DistributionsEnd, InvalidArgumentsAreFatal) {
    const std::string domain = " error for the input parameter in gammp function\n";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[] { gammp(0.0, 1.0); }, domain},
        {[] { gammp(1.0, -1e-9); }, domain},
        {[] { pchisq(0, 1.0); }, domain},
        {[] { Incomplete(gser, 1.0, -1.0); }, "error input parameter in routing gser\n"}};
    for (const auto& [act, text] : cases) {
        EXPECT_EXIT((std::cout.rdbuf(std::cerr.rdbuf()), act()), ::testing::ExitedWithCode(1),
                    ::testing::HasSubstr(text));
    }
}

}  // namespace
}  // namespace vort
