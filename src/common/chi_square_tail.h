// The upper tail of the chi-square distribution as the tests use it.
#pragma once

#include <cmath>
#include <limits>

#include "common/transcript.h"
#include "numeric/distributions.h"

namespace vort {

// 1 - pchisq(df, x). A continued fraction that does not converge is told to the transcript.
inline double chi_square_upper_tail(int df, double x, Transcript& transcript) {
    if (std::isfinite(x)) return 1 - pchisq(df, x);
    transcript << "a too large, ITMAX too small in gcf\n";
    return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace vort
