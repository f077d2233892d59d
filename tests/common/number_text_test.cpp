#include "common/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/decimal_digits.h"

namespace vort {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Bit patterns of all magnitudes, and numbers of few digits, where rounding ties and the change
// from fixed to scientific notation lie.
TEST(NumberText, ReadsAsAStreamWritesIt) {
    std::vector<double> numbers = {0.0,        -0.0,      1.0,       100000.0,      999999.0,
                                   999999.5,   1e6,       0.5,       1234565.,      0.0001,
                                   0.09999996, 0.9999996, 0.0000999, 0.00009999995, 12345.65,
                                   2.5,        5e-324,    1.7e308,   kInfinity,     -kInfinity};
    std::mt19937_64 random(20240501);
    for (int i = 0; i < 20000; ++i) {
        numbers.push_back(std::bit_cast<double>(random()));
        numbers.push_back(static_cast<double>(random() % 20000001) / 1e4 / (1 << (random() % 20)));
    }
    for (const double value : numbers) {
        if (std::isnan(value)) continue;
        std::ostringstream plain;
        plain << value;
        ASSERT_EQ(general(value).view(), plain.str()) << std::hexfloat << value;
        for (const auto& [precision, width] : {std::pair{6, 0}, {3, 7}, {0, 4}, {13, 20}}) {
            std::ostringstream stream;
            stream << std::fixed << std::setprecision(precision) << std::setw(width) << value;
            ASSERT_EQ(fixed(value, precision, width).view(), stream.str())
                << std::hexfloat << value << ", precision " << precision;
        }
    }
}

TEST(NumberText, EveryNotANumberHasASign) {
    for (const double value : {kNan, -kNan, kInfinity - kInfinity}) {
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

// Counting on past every change of length, and past what the digits of a word can hold.
TEST(DecimalDigits, CountAsNumbersDo) {
    for (const int start :
         {0, 8, 95, 990, 9990, 99990, 999990, 9999990, 99999990, 123456789, INT_MAX - 20}) {
        DecimalDigits digits(start);
        for (int value = start; value < start + 20; ++value, digits = digits.next()) {
            char text[16];
            ASSERT_EQ(std::string(text, digits.write(text)), std::to_string(value));
            ASSERT_EQ(std::string(text, DecimalDigits(value).write(text)), std::to_string(value));
        }
    }
}

TEST(Truncated, CutsTowardsZeroAndMarksWhatDoesNotFit) {
    const double values[] = {1.9, -1.9, 2147483647.9, -2147483647.9, -2147483648.9};
    const int expected[] = {1, -1, INT_MAX, -INT_MAX, INT_MIN};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(truncated(values[i]), expected[i]) << values[i];
    for (const double value : {2147483648.0, -2147483649.0, kInfinity, kNan}) {
        EXPECT_EQ(truncated(value), INT_MIN) << value;
    }
}

}  // namespace
}  // namespace vort
