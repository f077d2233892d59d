// Clusterings of genotype cells under several orders of the phenotype at once.
//
// A permuted order is clustered as any phenotype is: k-means of the cell means, the cells of each
// group counted, one statistic of the counts (csm_clustering.cpp and csm_score.cpp tell it one
// order at a time). The cells and the number of groups are the same for all orders, so each order
// is a lane of a register. What an order would choose by a branch, the nearest centre or the group
// to add a cell to, is here a selection; adding zero where a cell is in another group changes no
// sum, for a sum that began with zero is never minus zero. An order whose clustering has settled
// keeps its centres while the others go on. The sum of a cell is within rounding of cases * a +
// controls * b, a and b being the two values of the phenotype, which tells how many cases the cell
// has: they are not counted a second time.
//
// Cost: for g groups and c cells some 10 g c operations a pass, whatever the number of lanes.
#pragma once

#include "numeric/instructions.h"

namespace vort {

// Genotype cells 1 .. ncell under kLanes orders of a case-control phenotype.
struct PermutedCellSums {
    int ncell;
    const int* size;         // of each cell
    const double* sum;       // sum[c * kLanes + l]: of (phenotype - mean[l]) over cell c in lane l
    const double* mean;      // of the phenotype over all cells, in each lane
    double value[2];         // of a control and of a case
    double cases, controls;  // those in no cell included
};

template <Instructions kInstructions>
struct ClusterKernel {
    // statistic[(g - 2) * kLanes + l]: of the cells of lane l in g = 2 .. gmax groups.
    static void statistics(const PermutedCellSums& cells, int gmax, double* statistic);
};

}  // namespace vort
