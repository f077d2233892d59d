// Numbers as the reports and the console show them.
//
// All text output of the program goes through std::ostream; these small values are inserted where
// a stream's own formatting would be slow or would depend on the machine:
//
//     std::cout << "mean=" << general(mean) << '\n';     // six significant digits, as "%g"
//     report << fixed(beta, 3, 7) << "  ";               // as "%7.3f"
//
// A value that is not a number always reads "-nan": the sign of a computed NaN differs between
// processors, the bytes of a report must not.
#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace vort {

// Text of one number, held in place; never allocates.
class NumberText {
  public:
    std::string_view view() const { return {text_.data(), size_}; }

  private:
    friend NumberText general(double value);
    friend NumberText fixed(double value, int precision, int width);

    // Longest case: "%.13f" of the largest double has 309 + 1 + 13 characters and a sign.
    std::array<char, 336> text_;
    std::size_t size_ = 0;
};

// Six significant digits in the shorter of fixed and scientific notation ("%g").
NumberText general(double value);

// The same into out[0 ..], which has room for kGeneralLength characters; returns the end.
constexpr std::size_t kGeneralLength = 24;
char* write_general(double value, char* out);

// `precision` digits after the point, padded on the left to `width` characters ("%*.*f").
// precision 0..13, width 0..335.
NumberText fixed(double value, int precision = 6, int width = 0);

std::ostream& operator<<(std::ostream& out, const NumberText& number);

// A double cut towards zero to an int; INT_MIN where it does not fit or is not a number.
int truncated(double value);

}  // namespace vort
