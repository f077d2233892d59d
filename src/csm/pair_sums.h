// The genotype cells of many pairs of markers, several pairs at a time.
//
// The quick test of a pair adds every individual's phenotype to the sum of its cell: one chain of
// additions, each waiting for the one before where neighbours fall into the same cell. Four pairs
// that share their first marker are summed over one pass of the individuals instead, so that one
// pair's additions fill the other pairs' waits; every cell still receives its phenotypes in the
// order of the individuals, and has the bytes it would have alone. A marker's column holds 3
// where the genotype is missing, and cells with a 3 in them are summed like the others and then
// left out, which spares a test for each individual.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "csm/marker_planes.h"

namespace vort {

// Sums and counts of the nine cells of a pair, in ascending order of joint genotype codes.
struct PairCells {
    std::array<double, 9> sum;
    std::array<int, 9> count;
};

class PairSums {
  public:
    static constexpr int kAtOnce = 4;

    // The phenotype is in the order of the individuals and must outlive this.
    PairSums(const MarkerPlanes& markers, std::span<const double> phenotype);

    // The cells of the pairs (a, b), (a, b + 1), ... , at most kAtOnce of them; markers from 0.
    void sum(int a, int b, std::span<PairCells> out) const;

  private:
    static constexpr int kGenotypes = 4;  // 0, 1, 2 and missing
    static constexpr int kCodes = kGenotypes * kGenotypes;

    const unsigned char* column(int j) const {
        return columns_.data() + static_cast<std::size_t>(j) * phenotype_.size();
    }

    std::span<const double> phenotype_;
    std::vector<unsigned char> columns_;  // column after column
    std::vector<unsigned char> padding_;  // a column for pairs past the last
};

}  // namespace vort
