#include "common/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "common/decimal_digits.h"

namespace vort {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Bit patterns of all magnitudes, p-values, and numbers of few digits and their neighbours, where
// rounding ties and the change from fixed to scientific notation lie.
std::vector<double> numbers() {
    std::vector<double> all = {0.0,       -0.0,     100000.0,  999999.5, 1e6,       1234565.,
                               0.5,       0.0001,   0.9999995, 0.1,      0.0000999, 0.00009999995,
                               0.9999996, 12345.65, 5e-324,    1.7e308,  kInfinity, -kInfinity};
    std::mt19937_64 random(20240501);
    for (int i = 0; i < 20000; ++i) {
        const auto digits = static_cast<double>(random() % 20000001);
        all.push_back(std::bit_cast<double>(random()));
        all.push_back(digits / 1e4 / (1 << (random() % 20)));
        all.push_back((digits + 0.5) / std::pow(10, random() % 13));
        all.push_back(std::nextafter(all.back(), random() % 2 == 0 ? 0 : 1e9));
    }
    std::erase_if(all, [](double value) { return std::isnan(value); });
    return all;
}

TEST(NumberText, ReadsAsPrintfWritesItAndIsReadBack) {
    char text[Fixed::kLongest];
    for (const double value : numbers()) {
        std::snprintf(text, sizeof text, "%g", value);
        ASSERT_EQ(to_text(general(value)), text);
        ASSERT_EQ(as_read_back(general(value)), std::strtod(text, nullptr)) << text;
        const int formats[][2] = {{6, 0}, {3, 7}, {0, 4}, {13, 20}};
        for (const auto& [precision, width] : formats) {
            const Fixed number = fixed(value, precision, width);
            std::snprintf(text, sizeof text, "%*.*f", width, precision, value);
            ASSERT_EQ(to_text(number), text);
            if (text[0] == ' ') continue;
            ASSERT_EQ(as_read_back(number), std::strtod(text, nullptr)) << text;
        }
    }
}

TEST(NumberText, EveryNotANumberHasASign) {
    for (const double value : {kNan, -kNan, kInfinity - kInfinity}) {
        EXPECT_EQ(to_text(general(value)), "-nan");
        EXPECT_EQ(to_text(fixed(value, 3, 7)), "   -nan");
    }
}

// Counting on past every change of length, and past what the digits of a word can hold.
TEST(DecimalDigits, CountAsNumbersDo) {
    for (const int start : {0, 95, 990, 9990, 99990, 999990, 9999990, 99999990, INT_MAX - 20}) {
        DecimalDigits digits(start);
        for (int value = start; value < start + 20; ++value, digits = digits.next()) {
            char text[16];
            ASSERT_EQ(std::string(text, digits.write(text)), std::to_string(value));
            ASSERT_EQ(std::string(text, DecimalDigits(value).write(text)), std::to_string(value));
        }
    }
}

TEST(Truncated, CutsTowardsZeroAndMarksWhatDoesNotFit) {
    const double values[] = {1.9,          -1.9,          2147483647.9, -2147483648.9,
                             2147483648.0, -2147483649.0, kInfinity,    kNan};
    const int expected[] = {1, -1, INT_MAX, INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MIN};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(truncated(values[i]), expected[i]) << values[i];
}

}  // namespace
}  // namespace vort
