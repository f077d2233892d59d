#include "results/fitted_risk.h"

#include <cmath>

namespace vort {

FittedRisk fitted_risk(std::span<const BaseLearner> learners, double cases, double controls) {
    const double n = cases + controls;
    FittedRisk risk;
    risk.intercept = cases / n;
    for (const BaseLearner& learner : learners) {
        const double c = learner.carriers;
        const double difference = learner.beta / std::sqrt(c * (n - c) / n);
        risk.difference.push_back(difference);
        risk.intercept -= difference * c / n;
    }
    return risk;
}

}  // namespace vort
