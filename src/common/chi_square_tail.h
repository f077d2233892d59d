// p-values that say what they have to say in a transcript.
#pragma once

#include "common/stop.h"
#include "common/transcript.h"
#include "numeric/distributions.h"

namespace vort {

// Upper tail 1 - P of the chi-square distribution with `df` degrees of freedom, with the warning of
// a series that does not converge in the transcript; for a NaN x that is so, and the tail is NaN.
// df below 1 and a negative x stop the run with status 1.
inline double chi_square_upper_tail(int df, double x, Transcript& transcript) {
    if (df < 1 || x / 2.0 < 0.0) stop(kGammaDomain, 1);
    const Tail lower = lower_tail_chi_square(df, x);
    if (lower.warning != nullptr) transcript << lower.warning;
    return 1.0 - lower.value;
}

}  // namespace vort
