// Cases and controls in each genotype cell of a base learner's markers.
#pragma once

#include <span>
#include <vector>

#include "ensemble/base_learner.h"
#include "genotypes/genotypes.h"

namespace vort {

struct CellCount {
    int cases = 0;
    int controls = 0;

    int all() const { return cases + controls; }
};

// The nine cells of a pair, or the three of a single marker, in the order of their codes; whoever
// misses a genotype of the set is in none. `phenotypes`: a case is above 0; as many individuals as
// it has are counted. `columns`: genotype column of each rank.
std::vector<CellCount> count_cells(const Genotypes& genotypes, std::span<const short> phenotypes,
                                   const BaseLearner& learner, std::span<const int> columns);

}  // namespace vort
