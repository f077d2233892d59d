#include "csm/imputation.h"

namespace vort {

namespace {

signed char draw_code(const GenotypeFrequencies& share, Generator& generator) {
    const double u = generator.next();
    if (u <= share.of_0) return 0;
    return u <= share.of_0 + share.of_1 ? 1 : 2;
}

}  // namespace

std::vector<signed char> Imputation::codes(int marker) const {
    const int n = data_.individuals();
    std::vector<signed char> codes(static_cast<std::size_t>(n));
    std::vector<int> missing(codes.size(), -1);  // place of each individual without a genotype
    for (int i = 0; i < n; ++i) {
        codes[i] = static_cast<signed char>(data_.planes().code(i, marker));
        if (codes[i] == -1) missing[data_.order()[i]] = i;
    }
    Generator generator = start_;
    generator.skip(static_cast<std::uint64_t>(data_.missing_before(marker)));
    for (const int place : missing) {
        if (place >= 0) codes[place] = draw_code(data_.frequencies(marker), generator);
    }
    return codes;
}

}  // namespace vort
