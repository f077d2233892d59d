// The table of predictions, a line for each individual:
//
//     FID IID PHENO RISK MARKERS_FOUND X1 X2 ...
//
// PHENO is 2 for a case, 1 for a control; MARKERS_FOUND the share of the model's markers that the
// individual has a genotype of; X1, X2, ... (as the base learners are called in the report) 1 where
// it has the base learner, 0 where it has not. NA is what is not known.
#pragma once

#include <span>
#include <string>

#include "common/transcript.h"
#include "prediction/predictions.h"
#include "study/study.h"

namespace vort {

void put_predictions(std::span<const Individual> individuals, std::span<const short> phenotypes,
                     const RiskModel& model, const Predictions& predictions, Transcript& out);

}  // namespace vort
