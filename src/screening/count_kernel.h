// Counting the cases among the individuals of a plane; see genotype_tile.h.
#pragma once

#include <cstddef>

#include "numeric/instructions.h"

namespace vort {

// count[0 .. 2] of a column: individuals of the mask with genotype 1, with genotype 2, missing.
struct PlaneCounts {
    int count[3];
};

template <Instructions kInstructions>
struct CountKernel {
    // `planes` holds three planes of plane_size bytes for each of `columns` columns, `mask` one.
    static void count(const unsigned char* planes, int columns, std::size_t plane_size,
                      const unsigned char* mask, PlaneCounts* out);
};

}  // namespace vort
