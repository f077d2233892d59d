// Upper tails of the chi-square distribution that do not end where 1 - P does, at 1e-16.
#pragma once

#include <cmath>

namespace vort {

// For 1 or 2 degrees of freedom, in closed form: erfc(sqrt(x / 2)) and exp(-x / 2). Falls to 0 only
// below 1e-300. x >= 0 or not a number.
inline double upper_tail_chi_square(int df, double x) {
    return df == 1 ? std::erfc(std::sqrt(x / 2)) : std::exp(-x / 2);
}

}  // namespace vort
