// Two-bit genotypes taken apart into bit planes; see genotypes.h.
#pragma once

#include "genotypes/genotypes.h"
#include "numeric/instructions.h"

namespace vort {

template <Instructions kInstructions>
struct PlaneKernel {
    // The planes of a packed column of `individuals`, of which not a byte behind the last
    // individual's is read.
    static void planes(const unsigned char* column, int individuals, const GenotypePlanes& out);
};

}  // namespace vort
