// Clusterings of one set's genotype cells under several orders of the phenotype at once; see
// cell_clustering.h.
#pragma once

#include "numeric/instructions.h"
#include "numeric/lanes.h"

namespace vort {

// Genotype cells 1 .. ncell under kLanes orders of a case-control phenotype.
struct PermutedCells {
    int ncell;
    const int* size;      // of each cell
    const double* cases;  // cases[c * kLanes + l]: cases in cell c in lane l
    double value[2];      // phenotype of a control and of a case
    double all_cases;     // those in no cell included
    double all_controls;
    double tolerance;  // distances as close as this are told
};

template <Instructions kInstructions>
struct ClusterKernel {
    // statistic[l]: of the cells of lane l in g groups. Bit l of the result: lane l is unsure.
    static unsigned statistics(const PermutedCells& cells, int g, double* statistic);
};

}  // namespace vort
