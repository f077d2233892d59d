// Sums over genotype cells under eight orders at once; see permuted_cells.h.
#pragma once

#include "numeric/instructions.h"

namespace vort {

// kLanes orders of a phenotype: bit l of label[i] tells which of the two values individual i has
// in lane l.
struct PermutedPhenotype {
    const unsigned char* label;
    double value[2];
};

template <Instructions kInstructions>
struct CellSumKernel {
    // `member` lists `members` individuals. mean[l] = their mean in lane l.
    static void mean(const PermutedPhenotype& phenotype, const int* member, int members,
                     double* mean);

    // by_cell lists the members cell by cell, cell_count[c] of them for cell c = 1 .. ncell;
    // sum[c * kLanes + l] = the sum of (phenotype - mean[l]) over cell c in lane l.
    static void sums(const PermutedPhenotype& phenotype, const int* by_cell, const int* cell_count,
                     int ncell, const double* mean, double* sum);
};

}  // namespace vort
