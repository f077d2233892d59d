// What is said of a prediction: in a summary, and in the file beside the table.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>

#include "prediction/evaluation.h"
#include "prediction/predictions.h"
#include "study/study.h"

namespace vort {

// Nothing is owned.
struct PredictionDescription {
    std::string model_path;
    StudyFormat format;
    const Study& study;
    const RiskModel& model;
    std::span<const MarkerMatch> matches;
    const Predictions& predictions;
    const Evaluation& evaluation;  // of those who have a phenotype
};

std::string prediction_summary(const PredictionDescription& run);

nlohmann::ordered_json prediction_json(const PredictionDescription& run);

}  // namespace vort
