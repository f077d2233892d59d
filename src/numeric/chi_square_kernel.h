// The two expansions of the incomplete gamma function, eight at a time; see chi_square_lanes.h.
#pragma once

#include "numeric/instructions.h"

namespace vort {

constexpr int kStatisticsAtOnce = 8;

// x holds `size` points, a multiple of kStatisticsAtOnce; gln is ln Gamma(a). tail receives
// 1 - P(a, x); a tail that did not converge is negative.
template <Instructions kInstructions>
struct ChiSquareKernel {
    static void series(double a, double gln, const double* x, int size, double* tail);
    static void fraction(double a, double gln, const double* x, int size, double* tail);
};

}  // namespace vort
