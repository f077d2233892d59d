// The two expansions of the incomplete gamma function, eight at a time; see chi_square_lanes.h.
#pragma once

#include "numeric/instructions.h"

namespace vort {

constexpr int kStatisticsAtOnce = 8;

// All arrays hold `size` values, a multiple of kStatisticsAtOnce: shape a, point x, ln Gamma(a).
// tail receives 1 - P(a, x); a tail that did not converge is negative.
template <Instructions kInstructions>
struct ChiSquareKernel {
    static void series(const double* a, const double* x, const double* gln, int size, double* tail);
    static void fraction(const double* a, const double* x, const double* gln, int size,
                         double* tail);
};

}  // namespace vort
