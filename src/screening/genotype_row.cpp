#include "screening/genotype_row.h"

namespace vort {

namespace {

bool is_code(char c) {
    return c >= '0' && c <= '2';
}

}  // namespace

ParsedRow parse_genotypes(std::string_view text, int markers, char* codes) {
    const char* at = text.data();
    const char* const end = at + text.size();
    int j = 0;
    while (j < markers) {
        while (at < end && *at == ' ') ++at;
        if (at == end) break;
        if (*at == '-') {
            codes[j] = -1;
            at += end - at > 1 ? 2 : 1;
        } else if (is_code(*at)) {
            codes[j] = static_cast<char>(*at - '0');
            ++at;
        } else {
            break;
        }
        ++j;
    }
    return {j, at};
}

}  // namespace vort
