// One row of genotypes, from its characters to its codes.
#pragma once

#include <string_view>

namespace vort {

// Reads the genotypes of a text, a few at a time. A genotype is 0, 1 or 2, or a minus sign with any
// one character behind it for a missing one; blanks, not tabs, may stand before it.
class RowParser {
  public:
    // `text` is not owned.
    explicit RowParser(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

    // Reads up to `most` genotypes into codes[0 ..] and returns how many; elements behind them, up
    // to `most`, may be overwritten. Fewer than `most`: a character that starts no genotype, or the
    // end of the text, ends the row.
    int parse(int most, signed char* codes);

    // What is not used yet.
    std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

    // Whether a minus sign had no digit behind it.
    bool lone_minus() const { return lone_minus_; }

  private:
    void skip_blanks();
    int parse_pairs(int most, signed char* codes);
    bool parse_one(signed char& code);

    const char* at_;
    const char* end_;
    bool lone_minus_ = false;
};

}  // namespace vort
