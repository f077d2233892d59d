// One row of genotypes, from its characters to its codes.
#pragma once

#include <string_view>

namespace vort {

struct ParsedRow {
    int count;           // genotypes that the row gave, at most the number asked for
    const char* behind;  // the first character that was not used
    bool lone_minus;     // a minus sign had no digit behind it
};

// Reads up to `markers` genotypes from `text` into codes[0 .. count-1]; elements from `count` on
// are left alone. Stops at the first character that starts no genotype.
ParsedRow parse_genotypes(std::string_view text, int markers, char* codes);

}  // namespace vort
