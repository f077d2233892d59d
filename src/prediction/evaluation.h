// How well fitted risks agree with who is a case.
//
// The area under the curve (numeric/roc_area.h) looks at the order of the risks only. The Brier
// score (G. W. Brier, Monthly Weather Review 1950; 78, 1-3), the mean of (risk - y)^2, and the
// calibration, fitted against observed shares of cases, look at their size as well. The size is
// that of the study which the model was made from: among people with another share of cases it is
// shifted, while the order is not.
#pragma once

#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <vector>

#include "numeric/roc_area.h"

namespace vort {

// People with neighbouring risks.
struct RiskGroup {
    double lowest = 0;
    double highest = 0;
    double mean = 0;
    long individuals = 0;
    long cases = 0;
    Interval observed{0, 1};  // 95 %, of the share of cases
};

struct Evaluation {
    long cases = 0;
    long controls = 0;
    RocArea roc;
    double brier = std::numeric_limits<double>::quiet_NaN();
    double brier_without_model = std::numeric_limits<double>::quiet_NaN();  // one risk for all
    // By ascending risk, at most ten, of about a tenth of the people; those of equal risk together.
    std::vector<RiskGroup> calibration;

    long individuals() const { return cases + controls; }
};

// `phenotypes`: 1 case, 0 control; others are passed over, and who has no risk. `share`: of cases
// in the study that the model was made from, the risk that everybody has without a model.
Evaluation evaluate(std::span<const double> risks, std::span<const short> phenotypes, double share);

// As it stands in model.json and beside a prediction; null for what is not a number.
nlohmann::ordered_json evaluation_json(const Evaluation& evaluation);

// The way back. Throws std::out_of_range and what json throws where it is none.
Evaluation read_evaluation(const nlohmann::json& from);

}  // namespace vort
