#include "numeric/distributions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>

#include "support/console_capture.h"

namespace vort {
namespace {

using ::testing::HasSubstr;
using vort::testing::ConsoleCapture;

constexpr double kAccuracy = 3e-7;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kSeriesWarning = "a too large, ITMAX too small in routing gser\n";
constexpr const char* kFractionWarning = "a too large, ITMAX too small in gcf\n";

// Percentage points of the chi-square distribution as printed in tables (six decimals; E. S.
// Pearson and H. O. Hartley, Biometrika Tables for Statisticians I, table 8, carried further).
TEST(Pchisq, MeetsTabulatedPoints) {
    struct Case {
        int df;
        double x, lower_tail;
    };
    for (const Case& c :
         {Case{1, 2.705543, 0.90}, Case{1, 3.841459, 0.95}, Case{1, 6.634897, 0.99},
          Case{1, 10.827566, 0.999}, Case{2, 5.991465, 0.95}, Case{2, 9.210340, 0.99},
          Case{3, 7.814728, 0.95}, Case{4, 9.487729, 0.95}, Case{5, 11.070498, 0.95},
          Case{8, 15.507313, 0.95}, Case{8, 2.732637, 0.05}, Case{10, 18.307038, 0.95},
          Case{30, 43.772972, 0.95}, Case{100, 124.342113, 0.95}}) {
        EXPECT_NEAR(pchisq(c.df, c.x), c.lower_tail, kAccuracy) << "df=" << c.df << " x=" << c.x;
    }
}

TEST(Pchisq, MeetsTheClosedForms) {
    for (double x = 0.01; x < 80.0; x *= 1.37) {
        const double half = x / 2.0;
        EXPECT_NEAR(pchisq(1, x), std::erf(std::sqrt(half)), kAccuracy) << x;
        EXPECT_NEAR(pchisq(2, x), -std::expm1(-half), kAccuracy) << x;
        EXPECT_NEAR(pchisq(6, x), 1.0 - std::exp(-half) * (1.0 + half + half * half / 2.0),
                    kAccuracy)
            << x;
    }
}

// p-values far out are what a genome-wide scan looks for; there 1 - P is all cancellation, but Q
// itself must keep its relative accuracy.
TEST(Gcf, KeepsTheRelativeAccuracyOfSmallTails) {
    for (const double x : {10.0, 50.0, 200.0, 600.0}) {
        double q = 0.0;
        double gln = 0.0;
        gcf(&q, 0.5, x, &gln);
        EXPECT_NEAR(q / std::erfc(std::sqrt(x)), 1.0, kAccuracy) << x;
        EXPECT_NEAR(gln, std::log(std::sqrt(std::acos(-1.0))), 1e-11);
    }
}

TEST(Gammp, UsesTheContinuedFractionFromItsBoundaryOn) {
    const double a = 0.5;
    const double x = a + 1.0;
    double series = 0.0;
    double fraction = 0.0;
    double gln = 0.0;
    gser(&series, a, x, &gln);
    gcf(&fraction, a, x, &gln);
    ASSERT_NE(series, 1.0 - fraction) << "the two forms must differ for this test to tell";
    EXPECT_EQ(gammp(a, x), 1.0 - fraction);
    gser(&series, a, std::nextafter(x, 0.0), &gln);
    EXPECT_EQ(gammp(a, std::nextafter(x, 0.0)), series);
}

TEST(Gammp, IsExactAtItsEnds) {
    EXPECT_EQ(pchisq(1, 0.0), 0.0);
    EXPECT_EQ(1.0 - pchisq(3, 0.0), 1.0);
    EXPECT_EQ(pchisq(1, 200.0), 1.0);
    EXPECT_EQ(pnormal(0.0), 0.5);
}

TEST(Pnormal, AgreesWithTheErrorFunction) {
    for (double z = -6.0; z <= 6.0; z += 0.37) {
        EXPECT_NEAR(pnormal(z), 0.5 * std::erfc(-z / std::sqrt(2.0)), kAccuracy) << z;
    }
    EXPECT_NEAR(pnormal(1.959964), 0.975, kAccuracy);
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
    {
        const ConsoleCapture console;
        const double partial = gammp(1e5, 1e5);  // the whole series gives 0.5004
        EXPECT_EQ(console.text(), kSeriesWarning);
        EXPECT_GT(partial, 0.1);
        EXPECT_LT(partial, 0.5);
    }
    {
        const ConsoleCapture console;
        const double partial = gammp(1e6, 1e6 + 2.0);
        EXPECT_EQ(console.text(), kFractionWarning);
        EXPECT_TRUE(std::isfinite(partial));
    }
    {
        const ConsoleCapture console;
        EXPECT_TRUE(std::isnan(pchisq(1, kNan)));
        EXPECT_EQ(console.text(), kFractionWarning);
    }
    {
        const ConsoleCapture console;
        double p = 0.0;
        double gln = 0.0;
        gser(&p, 0.5, kNan, &gln);
        EXPECT_TRUE(std::isnan(p));
        EXPECT_EQ(console.text(), kSeriesWarning);
    }
}

// The message goes to the console, which a test of an end of the process cannot see.
void console_to_stderr() {
    std::cout.rdbuf(std::cerr.rdbuf());
}

TEST(DistributionsEnd, InvalidArgumentsAreFatal) {
    const auto status_one = ::testing::ExitedWithCode(1);
    const char* domain = " error for the input parameter in gammp function\n";
    EXPECT_EXIT((console_to_stderr(), gammp(0.0, 1.0)), status_one, HasSubstr(domain));
    EXPECT_EXIT((console_to_stderr(), gammp(1.0, -1e-9)), status_one, HasSubstr(domain));
    EXPECT_EXIT((console_to_stderr(), pchisq(0, 1.0)), status_one, HasSubstr(domain));
    double p = 0.0;
    double gln = 0.0;
    EXPECT_EXIT((console_to_stderr(), gser(&p, 1.0, -1.0, &gln)), status_one,
                HasSubstr("error input parameter in routing gser\n"));
}

}  // namespace
}  // namespace vort
