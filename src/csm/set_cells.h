// The genotype cells of one marker set.
//
// Distinct joint genotype codes (the base-3 number of the genotypes, the first marker's leading)
// are numbered 1 .. ncell in the order in which individuals first show them; an individual that
// misses a genotype of the set is in no cell.
#pragma once

#include <cstdint>
#include <vector>

#include "csm/marker_planes.h"
#include "csm/marker_set.h"

namespace vort {

constexpr int kMostCells = 9;

struct SetCells {
    int ncell = 0;
    std::vector<int> code;            // of cells 1 .. ncell; element 0 is unused
    std::vector<int> size;            // individuals in cells 1 .. ncell
    std::vector<unsigned char> cell;  // of the individual at each place; 0: in none
};

SetCells form_cells(const MarkerPlanes& planes, int individuals, const MarkerSet& set);

// Joint genotype code of an individual, from the codes (0 to 2) of the set's markers.
constexpr int joint_code(int size, int first, int second) {
    return size == 1 ? first : 3 * first + second;
}

}  // namespace vort
