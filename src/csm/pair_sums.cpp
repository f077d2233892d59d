#include "csm/pair_sums.h"

#include <algorithm>

namespace vort {

PairSums::PairSums(int** Tgen, const double* yy, const std::vector<bitset*>& missing_set, int n,
                   int m)
    : n_(static_cast<std::size_t>(n)),
      yy_(yy + 1, n_),
      columns_(n_ * static_cast<std::size_t>(m)),
      padding_(n_) {
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= m; ++j) {
            const bool imputed = missing_set[i]->GetAt(static_cast<unsigned long>(j)) != 0;
            columns_[(j - 1) * n_ + (i - 1)] =
                static_cast<unsigned char>(imputed ? kGenotypes - 1 : Tgen[i][j]);
        }
    }
}

void PairSums::sum(int a, int b, std::span<PairCells> out) {
    const unsigned char* const first = column(a);
    const unsigned char* second[kAtOnce];
    for (std::size_t p = 0; p < kAtOnce; ++p) {
        second[p] = p < out.size() ? column(b + static_cast<int>(p)) : padding_.data();
    }
    std::fill(&sum_[0][0], &sum_[0][0] + kAtOnce * kCodes, 0.0);
    std::fill(&count_[0][0], &count_[0][0] + kAtOnce * kCodes, 0);
    for (std::size_t i = 0; i < n_; ++i) {
        const double y = yy_[i];
        const int row = kGenotypes * first[i];
        for (int p = 0; p < kAtOnce; ++p) {
            const int code = row + second[p][i];
            sum_[p][code] += y;
            ++count_[p][code];
        }
    }
    for (std::size_t p = 0; p < out.size(); ++p) {
        for (int cell = 0; cell < 9; ++cell) {
            const int code = cell / 3 * kGenotypes + cell % 3;
            out[p].sum[cell] = sum_[p][code];
            out[p].count[cell] = count_[p][code];
        }
    }
}

}  // namespace vort
