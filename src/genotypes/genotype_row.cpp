// Rows are long and nearly all alike: a digit, a blank, a digit, a blank. Eight such pairs are read
// at a time: sixteen characters less their pattern "0 0 0 0 " leave 0, 1 or 2 in the places of the
// digits and 0 in those of the blanks; the first place where they do not is read on its own.
//
// Cost: some eight operations for eight genotypes.
#include "genotypes/genotype_row.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace vort {

namespace {

constexpr int kAtOnce = 8;

using Characters [[gnu::vector_size(2 * kAtOnce)]] = unsigned char;
using Pairs [[gnu::vector_size(2 * kAtOnce)]] = std::uint16_t;
using Codes [[gnu::vector_size(kAtOnce)]] = unsigned char;

// Of a pair, the first character is the low half where the machine is little-endian.
constexpr Characters kPattern = {'0', ' ', '0', ' ', '0', ' ', '0', ' ',
                                 '0', ' ', '0', ' ', '0', ' ', '0', ' '};
constexpr Characters kLargest = {2, 0, 2, 0, 2, 0, 2, 0, 2, 0, 2, 0, 2, 0, 2, 0};

int first_wrong(const std::uint64_t (&wrong)[2]) {
    return wrong[0] != 0 ? std::countr_zero(wrong[0]) / 8 : 8 + std::countr_zero(wrong[1]) / 8;
}

// Reads up to eight genotypes from sixteen characters and returns how many characters are as they
// should be, digits and blanks in turn; what is stored behind the genotypes read means nothing.
int parse_eight(const char* text, signed char* codes) {
    Characters digits;
    std::memcpy(&digits, text, sizeof digits);
    digits -= kPattern;
    const auto wrong = digits > kLargest;
    // Blanks have left zeros, and wrong characters must, so a pair is its digit, in whichever half.
    digits &= ~reinterpret_cast<Characters>(wrong);
    const auto pairs = reinterpret_cast<Pairs>(digits);
    const Codes eight = __builtin_convertvector(pairs | pairs >> 8, Codes);
    std::memcpy(codes, &eight, sizeof eight);
    std::uint64_t any[2];
    std::memcpy(any, &wrong, sizeof any);
    if ((any[0] | any[1]) == 0) return 2 * kAtOnce;
    return first_wrong(any);
}

}  // namespace

void RowParser::skip_blanks() {
    while (at_ < end_ && *at_ == ' ') ++at_;
}

// As long as digits and blanks alternate.
int RowParser::parse_pairs(int most, signed char* codes) {
    skip_blanks();
    int count = 0;
    int good = 2 * kAtOnce;
    while (good == 2 * kAtOnce && most - count >= kAtOnce && end_ - at_ >= 2 * kAtOnce) {
        good = parse_eight(at_, codes + count);
        count += (good + 1) / 2;
        at_ += good;
    }
    return count;
}

bool RowParser::parse_one(signed char& code) {
    skip_blanks();
    if (at_ == end_) return false;
    if (*at_ == '-') {
        const bool followed = end_ - at_ > 1;
        lone_minus_ = lone_minus_ || !followed || at_[1] < '0' || at_[1] > '9';
        code = -1;
        at_ += followed ? 2 : 1;
        return true;
    }
    if (*at_ < '0' || *at_ > '2') return false;
    code = static_cast<signed char>(*at_++ - '0');
    return true;
}

int RowParser::parse(int most, signed char* codes) {
    int count = 0;
    for (;;) {
        count += parse_pairs(most - count, codes + count);
        // What stands there is nothing for pairs, or too short for them.
        if (count == most || !parse_one(codes[count])) return count;
        ++count;
    }
}

}  // namespace vort
