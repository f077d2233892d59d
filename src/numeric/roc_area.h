// How well a score tells two groups apart: the area under the receiver operating characteristic.
//
// The area is the chance that the score of somebody from the upper group exceeds that of somebody
// from the lower one, an equal score counting half: the statistic of Mann & Whitney over the number
// of pairs. Its variance is that of E. R. DeLong, D. M. DeLong and D. L. Clarke-Pearson, Biometrics
// 1988; 44, 837-845: with V of a member the share of the other group that it exceeds,
//
//     var = var(V of the upper) / their number + var(V of the lower) / their number
//
// V takes two binary searches, so that the cost is that of sorting (X. Sun and W. Xu, IEEE Signal
// Process. Lett. 2014; 21, 1389-1393). Twice the wins are whole numbers, so the area is exact but
// for one division.
#pragma once

#include <limits>
#include <span>

#include "numeric/binomial_interval.h"

namespace vort {

// Not a number where it cannot be told: all without members of both groups; the others also with
// one member of a group, and the interval where the groups do not overlap (a standard error of 0
// says nothing about others).
struct RocArea {
    double area = std::numeric_limits<double>::quiet_NaN();
    double standard_error = std::numeric_limits<double>::quiet_NaN();
    Interval interval{std::numeric_limits<double>::quiet_NaN(),
                      std::numeric_limits<double>::quiet_NaN()};  // 95 %, cut to 0 .. 1
};

// The order of the scores does not matter; none of them is not a number.
RocArea roc_area(std::span<const double> upper, std::span<const double> lower);

}  // namespace vort
