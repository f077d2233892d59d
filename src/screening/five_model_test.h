// Four association tests of one marker, and the smallest of their p-values.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "screening/screening_result.h"

namespace vort {

// Genotype counts of one group: individuals with genotype 0, 1, 2, and with a missing genotype.
struct GenotypeCounts {
    std::array<int, 4> count{};
};

struct MarkerCounts {
    GenotypeCounts cases;
    GenotypeCounts controls;
};

// Counts the codes of a column; a phenotype of 1 is a case, any other a control.
MarkerCounts count_genotypes(std::span<const signed char> codes, std::span<const short> phenotypes);

// The p-values of the additive, dominant, recessive and genotype models, in this order. `cases` and
// `controls` are the group sizes, missing genotypes included. All four are 1 where a group has no
// genotype at all.
std::array<double, kModels> five_model_pvalues(const MarkerCounts& counts, int cases, int controls);

}  // namespace vort
