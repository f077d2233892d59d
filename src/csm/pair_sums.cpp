#include "csm/pair_sums.h"

namespace vort {

PairSums::PairSums(const MarkerPlanes& markers, std::span<const double> phenotype)
    : phenotype_(phenotype), padding_(phenotype.size()) {
    columns_.reserve(phenotype.size() * static_cast<std::size_t>(markers.markers()));
    for (int j = 0; j < markers.markers(); ++j) {
        for (int i = 0; i < markers.individuals(); ++i) {
            const int code = markers.code(i, j);
            columns_.push_back(static_cast<unsigned char>(code < 0 ? kGenotypes - 1 : code));
        }
    }
}

void PairSums::sum(int a, int b, std::span<PairCells> out) const {
    const unsigned char* const first = column(a);
    const unsigned char* second[kAtOnce];
    for (std::size_t p = 0; p < kAtOnce; ++p) {
        second[p] = p < out.size() ? column(b + static_cast<int>(p)) : padding_.data();
    }
    double sums[kAtOnce][kCodes] = {};
    int counts[kAtOnce][kCodes] = {};
    for (std::size_t i = 0; i < phenotype_.size(); ++i) {
        const double y = phenotype_[i];
        const int row = kGenotypes * first[i];
        for (int p = 0; p < kAtOnce; ++p) {
            const int code = row + second[p][i];
            sums[p][code] += y;
            ++counts[p][code];
        }
    }
    for (std::size_t p = 0; p < out.size(); ++p) {
        for (int cell = 0; cell < 9; ++cell) {
            const int code = cell / 3 * kGenotypes + cell % 3;
            out[p].sum[cell] = sums[p][code];
            out[p].count[cell] = counts[p][code];
        }
    }
}

}  // namespace vort
