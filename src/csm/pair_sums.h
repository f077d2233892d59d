// The genotype cells of many pairs of markers, several pairs at a time.
//
// The quick test of a pair adds every individual's phenotype to the sum of its cell: one chain of
// additions, each waiting for the one before where neighbours fall into the same cell. Four pairs
// that share their first marker are summed over one pass of the individuals instead, so that one
// pair's additions fill the other pairs' waits; every cell still receives its phenotypes in the
// order of the individuals, and has the bytes it would have alone. A marker's column holds 3
// where the genotype was imputed, and cells with a 3 in them are summed like the others and then
// left out, which spares a test for each individual.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "common/bitset.h"

namespace vort {

// Sums and counts of the nine cells of a pair, in ascending order of joint genotype codes.
struct PairCells {
    std::array<double, 9> sum;
    std::array<int, 9> count;
};

class PairSums {
  public:
    static constexpr int kAtOnce = 4;

    // Tgen (rows 1 .. n, columns 1 .. m), yy (1 .. n) and missing_set (1 .. n) as a CSM holds them.
    PairSums(int** Tgen, const double* yy, const std::vector<bitset*>& missing_set, int n, int m);

    // The cells of the pairs (a, b), (a, b + 1), ... , at most kAtOnce of them.
    void sum(int a, int b, std::span<PairCells> out);

  private:
    static constexpr int kGenotypes = 4;  // 0, 1, 2 and imputed
    static constexpr int kCodes = kGenotypes * kGenotypes;

    const unsigned char* column(int j) const { return columns_.data() + (j - 1) * n_; }

    std::size_t n_;
    std::span<const double> yy_;          // from 0
    std::vector<unsigned char> columns_;  // column after column
    std::vector<unsigned char> padding_;  // a column for pairs past the last
    double sum_[kAtOnce][kCodes];
    int count_[kAtOnce][kCodes];
};

}  // namespace vort
