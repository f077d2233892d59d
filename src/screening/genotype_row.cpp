// Rows are long and nearly all alike: a digit, a blank, a digit, a blank. Eight such pairs are read
// at a time: sixteen characters less their pattern "0 0 0 0 " leave 0, 1 or 2 in the places of the
// digits and 0 in those of the blanks, or the eight genotypes are read one by one.
//
// Cost: some eight operations for eight genotypes.
#include "screening/genotype_row.h"

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

// Reads eight genotypes from sixteen characters; false, with nothing stored, where these are
// anything but digits and blanks in turn.
bool parse_eight(const char* text, char* codes) {
    Characters digits;
    std::memcpy(&digits, text, sizeof digits);
    digits -= kPattern;
    const auto wrong = digits > kLargest;
    std::uint64_t any[2];
    std::memcpy(any, &wrong, sizeof any);
    if ((any[0] | any[1]) != 0) return false;
    // The blanks have left zeros, so a pair is its digit, in whichever half.
    const auto pairs = reinterpret_cast<Pairs>(digits);
    const Codes eight = __builtin_convertvector(pairs | pairs >> 8, Codes);
    std::memcpy(codes, &eight, sizeof eight);
    return true;
}

class RowParser {
  public:
    RowParser(std::string_view text, int markers, char* codes)
        : at_(text.data()), end_(at_ + text.size()), markers_(markers), codes_(codes) {}

    ParsedRow parse() {
        bool more = true;
        while (more && count_ < markers_) {
            parse_eights();
            for (int k = 0; more && k < kAtOnce && count_ < markers_; ++k) more = parse_one();
        }
        return {count_, at_, lone_minus_};
    }

  private:
    void skip_blanks() {
        while (at_ < end_ && *at_ == ' ') ++at_;
    }

    void parse_eights() {
        skip_blanks();
        const char* const from = at_;
        while (markers_ - count_ >= kAtOnce && end_ - at_ >= 2 * kAtOnce &&
               parse_eight(at_, codes_ + count_)) {
            count_ += kAtOnce;
            at_ += 2 * kAtOnce;
        }
        if (at_ != from) --at_;  // the blank behind the last genotype is not part of it
    }

    bool parse_one() {
        skip_blanks();
        if (at_ == end_) return false;
        if (*at_ == '-') {
            const bool followed = end_ - at_ > 1;
            lone_minus_ = lone_minus_ || !followed || at_[1] < '0' || at_[1] > '9';
            codes_[count_++] = -1;
            at_ += followed ? 2 : 1;
            return true;
        }
        if (*at_ < '0' || *at_ > '2') return false;
        codes_[count_++] = static_cast<char>(*at_++ - '0');
        return true;
    }

    const char* at_;
    const char* end_;
    int markers_;
    char* codes_;
    int count_ = 0;
    bool lone_minus_ = false;
};

}  // namespace

ParsedRow parse_genotypes(std::string_view text, int markers, char* codes) {
    return RowParser(text, markers, codes).parse();
}

}  // namespace vort
