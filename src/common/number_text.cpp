// Six digits of a number below 1 are most of what the console shows, so they have a way of their
// own: the number times a power of ten that is exact in a double is off by one part in 2^53, hence,
// unless it comes out within that of a half, rounding it gives the six digits of the exact
// value. The rare cases near a half, and all other numbers, go the library's way.
//
//     0.00516301...  x 10^8 = 516301.08...  ->  "516301"  ->  "0.00516301"
#include "common/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <limits>
#include <ostream>

namespace vort {

namespace {

constexpr double kPrintedNan = -std::numeric_limits<double>::quiet_NaN();

double printable(double value) {
    return std::isnan(value) ? std::copysign(kPrintedNan, -1.0) : value;
}

constexpr int kDigits = 6;

// Zeros between the point and the first digit of a value from 0.00001 up to, not including, 1; -1
// outside.
int leading_zeros(double value) {
    constexpr double kFrom[] = {0.1, 0.01, 0.001, 0.0001, 0.00001};
    if (!(value < 1)) return -1;
    for (int zeros = 0; zeros < 5; ++zeros) {
        if (value >= kFrom[zeros]) return zeros;
    }
    return -1;
}

// Six digits of `value` as a number from 100000 to 1000000; 0 where they are not sure.
int six_digits(double value, int zeros) {
    constexpr double kPower[] = {1e6, 1e7, 1e8, 1e9, 1e10};
    constexpr double kUnsure = 1e-6;
    // Rounded by the cut of what is half too large; how far the cut was tells how near a half was.
    const double scaled = value * kPower[zeros] + 0.5;
    const int digits = static_cast<int>(scaled);
    const double above = scaled - digits;
    return above < kUnsure || above > 1 - kUnsure ? 0 : digits;
}

// "00" to "99".
constexpr auto kPairs = [] {
    std::array<char, 200> pairs{};
    for (int i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

// Without the zeros at the end.
char* write_digits(int digits, char* out) {
    std::copy_n(&kPairs[2 * (digits / 10000)], 2, out);
    std::copy_n(&kPairs[2 * (digits / 100 % 100)], 2, out + 2);
    std::copy_n(&kPairs[2 * (digits % 100)], 2, out + 4);
    char* end = out + kDigits;
    while (end[-1] == '0') --end;
    return end;
}

char* write_below_one(int digits, int zeros, char* out) {
    if (zeros == 4) {  // 0.00001234 is written as 1.234e-05
        char* end = write_digits(digits, out + 1);
        out[0] = out[1];
        out[1] = '.';
        if (end == out + 2) --end;
        return std::copy_n("e-05", 4, end);
    }
    std::copy_n("0.000000", 8, out);
    return write_digits(digits, out + 2 + zeros);
}

}  // namespace

char* General::write(char* out) const {
    int zeros = leading_zeros(value);
    if (zeros >= 0) {
        int digits = six_digits(value, zeros);
        if (digits == 1000000) {  // 0.0999999999 is 0.1
            digits = 100000;
            --zeros;
        }
        if (digits > 0 && zeros >= 0) return write_below_one(digits, zeros, out);
    }
    return std::to_chars(out, out + kLongest, printable(value), std::chars_format::general, kDigits)
        .ptr;
}

char* Fixed::write(char* out) const {
    return out + std::snprintf(out, kLongest, "%*.*f", width, precision, printable(value));
}

namespace {

template <typename Number>
std::string text_of(const Number& number) {
    char text[Number::kLongest];
    return std::string(text, number.write(text));
}

template <typename Number>
double read_back(const Number& number) {
    char text[Number::kLongest];
    double value = 0;
    std::from_chars(text, number.write(text), value);
    return value;
}

}  // namespace

std::string to_text(const General& number) {
    return text_of(number);
}
std::string to_text(const Fixed& number) {
    return text_of(number);
}

double as_read_back(const General& number) {
    return read_back(number);
}
double as_read_back(const Fixed& number) {
    return read_back(number);
}

std::ostream& operator<<(std::ostream& out, const General& number) {
    return out << text_of(number);
}
std::ostream& operator<<(std::ostream& out, const Fixed& number) {
    return out << text_of(number);
}

int truncated(double value) {
    constexpr double kAboveInt = 2147483648.0;
    // Written so that a value that is not a number takes the second branch.
    if (value > -kAboveInt - 1.0 && value < kAboveInt) return static_cast<int>(value);
    return INT_MIN;
}

}  // namespace vort
