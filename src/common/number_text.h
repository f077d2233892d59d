// Numbers as the reports and the console show them.
//
// These small values are inserted where a stream's own formatting would be slow or would depend on
// the machine; nothing is formatted before they are written:
//
//     transcript << "mean=" << general(mean) << '\n';     // six significant digits, as "%g"
//     report << fixed(beta, 3, 7) << "  ";               // as "%7.3f"
//
// A value that is not a number always reads "-nan": the sign of a computed NaN differs between
// processors, the bytes of a report must not.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

namespace vort {

// Six significant digits in the shorter of fixed and scientific notation ("%g").
struct General {
    double value;

    static constexpr std::size_t kLongest = 24;
    // Writes to out[0 .. kLongest-1] and returns the end.
    char* write(char* out) const;
};

// `precision` digits after the point, padded on the left to `width` characters ("%*.*f").
// precision 0..13, width 0..335.
struct Fixed {
    double value;
    int precision;
    int width;

    static constexpr std::size_t kLongest = 340;
    char* write(char* out) const;
};

inline General general(double value) {
    return {value};
}
inline Fixed fixed(double value, int precision = 6, int width = 0) {
    return {value, precision, width};
}

std::ostream& operator<<(std::ostream& out, const General& number);
std::ostream& operator<<(std::ostream& out, const Fixed& number);

std::string to_text(const General& number);
std::string to_text(const Fixed& number);

// What a reader of the text gets back: the value as far as its digits go.
double as_read_back(const General& number);
double as_read_back(const Fixed& number);

// A double cut towards zero to an int; INT_MIN where it does not fit or is not a number.
int truncated(double value);

}  // namespace vort
