// Whole numbers as text, all digits at once where there are at most eight.
//
// The number is split into numbers of four, two and one digit; each step works on all parts side by
// side in one 64-bit word, with a multiplication and a shift for the division (P. Khuong, "How to
// print integers really fast", 2017):
//
//     12345678  ->  1234 | 5678  ->  12 | 34 | 56 | 78  ->  1 | 2 | 3 | 4 | 5 | 6 | 7 | 8
//
// How many zeros stand in front is then a count of bits, and counting on by one is an addition to
// the last digit, nine times in ten.
#pragma once

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace vort {

class DecimalDigits {
  public:
    // value >= 0
    explicit constexpr DecimalDigits(int value)
        : value_(static_cast<std::uint32_t>(value)), digits_(split(value_)) {}

    // The number after this one. Where there are more than eight digits, only value_ has to be
    // right.
    constexpr DecimalDigits next() const {
        DecimalDigits following = *this;
        if (digits_ >> kLastDigit == 9) return DecimalDigits(static_cast<int>(value_) + 1);
        ++following.value_;
        following.digits_ += std::uint64_t{1} << kLastDigit;
        return following;
    }

    // Writes the digits without zeros in front; returns the end. Uses out[0 .. 9] in any case.
    char* write(char* out) const {
        if (value_ >= kNineDigits) return std::to_chars(out, out + kLongest, value_).ptr;
        static_assert(std::endian::native == std::endian::little);
        const int zeros = std::countr_zero(digits_ | std::uint64_t{1} << kLastDigit) / 8;
        const std::uint64_t text = (digits_ | 0x30303030'30303030) >> (8 * zeros);
        std::memcpy(out, &text, sizeof text);
        return out + 8 - zeros;
    }

  private:
    static constexpr std::uint32_t kNineDigits = 100'000'000;
    static constexpr int kLongest = 10;
    static constexpr int kLastDigit = 56;  // where in the word it begins

    // The first digit in the lowest byte; nothing of use where there are more than eight.
    static constexpr std::uint64_t split(std::uint32_t value) {
        std::uint64_t parts = value / 10000 | std::uint64_t{value % 10000} << 32;
        std::uint64_t upper = (parts * 10486 >> 20) & 0x0000007F'0000007F;  // divided by 100
        parts = upper | (parts - 100 * upper) << 16;
        upper = (parts * 103 >> 10) & 0x000F000F'000F000F;  // divided by 10
        return upper | (parts - 10 * upper) << 8;
    }

    std::uint32_t value_;
    std::uint64_t digits_;
};

}  // namespace vort
