#include "common/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace vort {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Bit patterns of all magnitudes, and numbers of few digits, where rounding ties and the change
// from fixed to scientific notation lie.
std::vector<double> numbers() {
    std::vector<double> all = {0.0,   -0.0,     1.0,     100000.0,  999999.0,      999999.5,
                               1e6,   1234565., 0.0001,  0.0000999, 0.00009999995, 0.5,
                               2.5,   1e100,    5e-324,  1.7e308,   kInfinity,     -kInfinity,
                               0.002, -1e-5,    12345.65};
    std::mt19937_64 random(20240501);
    for (int i = 0; i < 20000; ++i) {
        all.push_back(std::bit_cast<double>(random()));
        all.push_back(static_cast<double>(random() % 20000001) / 1e4 / (1 << (random() % 20)));
    }
    std::erase_if(all, [](double value) { return std::isnan(value); });
    return all;
}

TEST(General, ReadsAsAStreamsDefaultDoes) {
    for (const double value : numbers()) {
        std::ostringstream stream;
        stream << value;
        ASSERT_EQ(general(value).view(), stream.str()) << std::hexfloat << value;
    }
}

TEST(Fixed, ReadsAsAStreamsFixedFormDoes) {
    for (const double value : numbers()) {
        for (const auto& [precision, width] : {std::pair{6, 0}, {3, 7}, {0, 4}, {13, 20}}) {
            std::ostringstream stream;
            stream << std::fixed << std::setprecision(precision) << std::setw(width) << value;
            ASSERT_EQ(fixed(value, precision, width).view(), stream.str())
                << std::hexfloat << value << ", precision " << precision;
        }
    }
}

TEST(NumberText, EveryNotANumberHasASign) {
    const double computed = kInfinity - kInfinity;
    for (const double value : {kNan, -kNan, std::copysign(kNan, 1.0), computed}) {
        EXPECT_EQ(general(value).view(), "-nan");
        EXPECT_EQ(fixed(value, 3, 7).view(), "   -nan");
    }
}

TEST(NumberText, IgnoresTheStreamsOwnFormat) {
    std::ostringstream stream;
    stream << std::hex << std::setprecision(2) << std::setfill('*') << general(1234.5678) << ' '
           << std::setw(12) << fixed(-2.0, 1, 5);
    EXPECT_EQ(stream.str(), "1234.57  -2.0");
}

TEST(Truncated, CutsTowardsZeroAndMarksWhatDoesNotFit) {
    const struct {
        double value;
        int expected;
    } rows[] = {
        {1.9, 1},
        {-1.9, -1},
        {-0.5, 0},
        {2147483647.9, INT_MAX},
        {2147483648.0, INT_MIN},
        {-2147483648.9, INT_MIN},
        {-2147483647.9, -INT_MAX},
        {-2147483649.0, INT_MIN},
        {kInfinity, INT_MIN},
        {-kInfinity, INT_MIN},
        {kNan, INT_MIN},
    };
    for (const auto& row : rows) EXPECT_EQ(truncated(row.value), row.expected) << row.value;
}

}  // namespace
}  // namespace vort
