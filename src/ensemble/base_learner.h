// One base learner of the final model.
#pragma once

#include <array>
#include <vector>

namespace vort {

// A group of genotype cells of one marker set, with a coefficient that is not 0. A cell of a single
// marker is its genotype, 0 to 2; a cell of a pair is 3 x the first marker's genotype + the
// second's, 0 to 8.
struct BaseLearner {
    int id = 0;                    // 1-based, in the order of the design's columns
    int markers = 0;               // 1 or 2
    std::array<int, 2> marker{};   // ranks from 1; `markers` of them
    std::vector<int> cells;        // genotype codes of the reported group
    double beta = 0;               // coefficient
    double importance = 0;         // share that it adds to each of its markers
    std::array<int, 9> cluster{};  // group (from 0) of each genotype cell of the set
    double average = 0;            // share of cases in the group
    int group = 0;                 // (from 0) that the coefficient belongs to
    int carriers = 0;              // individuals in it, by imputed genotypes where one is missing

    int cell_count() const { return markers == 1 ? 3 : 9; }
};

}  // namespace vort
