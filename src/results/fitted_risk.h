// A model's coefficients as differences in risk.
//
// The coefficient b of a base learner belongs to its column of zeros and ones, centred and scaled
// to length 1. With c of n individuals in the group, the column's length before scaling is
// sqrt(c (n - c) / n), so that being in the group makes a difference of b / sqrt(c (n - c) / n),
// and the intercept is the study's share of cases less the differences times c / n.
#pragma once

#include <span>
#include <vector>

#include "ensemble/base_learner.h"

namespace vort {

struct FittedRisk {
    double intercept = 0;
    std::vector<double> difference;  // of each base learner
};

// n = cases + controls; every group has individuals in it and outside.
FittedRisk fitted_risk(std::span<const BaseLearner> learners, double cases, double controls);

}  // namespace vort
