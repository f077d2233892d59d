#include "common/number_text.h"

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

}  // namespace

NumberText general(double value) {
    NumberText number;
    char* begin = number.text_.data();
    const auto end = std::to_chars(begin, begin + number.text_.size(), printable(value),
                                   std::chars_format::general, 6);
    number.size_ = static_cast<std::size_t>(end.ptr - begin);
    return number;
}

NumberText fixed(double value, int precision, int width) {
    NumberText number;
    const int length = std::snprintf(number.text_.data(), number.text_.size(), "%*.*f", width,
                                     precision, printable(value));
    number.size_ = static_cast<std::size_t>(length);
    return number;
}

std::ostream& operator<<(std::ostream& out, const NumberText& number) {
    const std::string_view text = number.view();
    return out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

int truncated(double value) {
    constexpr double kAboveInt = 2147483648.0;
    // Written so that a value that is not a number takes the second branch.
    if (value > -kAboveInt - 1.0 && value < kAboveInt) return static_cast<int>(value);
    return INT_MIN;
}

}  // namespace vort
