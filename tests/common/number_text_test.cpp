#include "common/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "common/decimal_digits.h"

namespace vort {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <typename Number>
void expect_text(const Number& number, const char* text) {
    ASSERT_EQ(to_text(number), text);
    if (text[0] == ' ' || std::isnan(number.value)) return;
    ASSERT_EQ(as_read_back(number), std::strtod(text, nullptr)) << text;
}

void expect_as_printf(double value) {
    char text[Fixed::kLongest];
    std::snprintf(text, sizeof text, "%g", value);
    expect_text(general(value), text);
    const int formats[][2] = {{6, 0}, {3, 7}, {0, 4}, {13, 20}};
    for (const auto& [precision, width] : formats) {
        std::snprintf(text, sizeof text, "%*.*f", width, precision, value);
        expect_text(fixed(value, precision, width), text);
    }
}

// Bit patterns of all magnitudes, p-values, and numbers of few digits and their neighbours, where
// rounding ties and the change from fixed to scientific notation lie.
TEST(NumberText, ReadsAsPrintfWritesIt) {
    for (const double value :
         {0.0, -0.0, 999999.5, 1e6, 1234565., 0.9999995, 0.1, 0.0000999, 0.00009999995, 0.9999996,
          5e-324, 1.7e308, kInfinity, -kInfinity, -std::nan("")}) {
        expect_as_printf(value);
    }
    std::mt19937_64 random(20240501);
    for (int i = 0; i < 20000 && !::testing::Test::HasFatalFailure(); ++i) {
        const auto digits = static_cast<double>(random() % 20000001);
        const auto bits = std::bit_cast<double>(random());
        const double tie = (digits + 0.5) / std::pow(10, random() % 13);
        expect_as_printf(std::isnan(bits) ? 0.5 : bits);
        expect_as_printf(digits / 1e4 / (1 << (random() % 20)));
        expect_as_printf(tie);
        expect_as_printf(std::nextafter(tie, random() % 2 == 0 ? 0 : 1e9));
    }
    EXPECT_EQ(to_text(general(std::nan(""))) + to_text(fixed(std::nan(""), 3, 7)), "-nan   -nan");
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

}  // namespace
}  // namespace vort
