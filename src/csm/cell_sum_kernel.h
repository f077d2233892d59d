// Sums over genotype cells under eight orders at once; see permuted_cells.h.
#pragma once

#include "numeric/instructions.h"

namespace vort {

template <Instructions kInstructions>
struct CellSumKernel {
    // phenotype holds kLanes values for each individual; member lists `members` individuals.
    // mean[l] = their mean in lane l.
    static void mean(const double* phenotype, const int* member, int members, double* mean);

    // by_cell lists the members cell by cell, cell_count[c] of them for cell c = 1 .. ncell;
    // sum[c * kLanes + l] = the sum of (phenotype - mean[l]) over cell c in lane l.
    static void sums(const double* phenotype, const int* by_cell, const int* cell_count, int ncell,
                     const double* mean, double* sum);
};

}  // namespace vort
