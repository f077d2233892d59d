// One base learner of the final model.
#pragma once

#include <array>

namespace vort {

// A group of genotype cells of one marker set, with a coefficient that is not 0. A cell of a single
// marker is its genotype, 0 to 2; a cell of a pair is 3 x the first marker's genotype + the
// second's, 0 to 8.
struct output_information {
    int id = 0;                     // 1-based, in the order recorded
    int nmarker = 0;                // 1 or 2
    std::array<int, 3> marker{};    // ranks 1 .. m in entries 1 .. nmarker, else 0
    int ncell = 0;                  // cells in the group
    std::array<int, 10> cell{};     // their genotype codes
    double beta = 0;                // coefficient
    double importance = 0;          // share that it adds to each of its markers
    std::array<int, 10> cluster{};  // group of each genotype cell of the set
    double average = 0;             // share of cases in the group
};

}  // namespace vort
