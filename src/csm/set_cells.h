// The genotype cells of one marker set.
#pragma once

#include <vector>

namespace vort {

// Distinct joint genotype codes are numbered 1 .. ncell in the order in which individuals 1 .. n
// first show them; individuals with an imputed genotype in the set are left out.
struct SetCells {
    int ncell = 0;
    std::vector<int> code;  // of each individual, 1 .. n
    std::vector<int> cell;  // of each individual, 1 .. n; 0 for one that is left out
};

}  // namespace vort
