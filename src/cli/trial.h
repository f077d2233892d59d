// A run's model tried on the individuals that were held back from it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "results/model_json.h"
#include "study/holdout.h"

namespace vort {

struct Trial {
    std::string table;                   // holdout.tsv
    nlohmann::ordered_json description;  // "holdout" of model.json
};

// `model`: what stands in model.json.
Trial try_model(const ModelDescription& run, const nlohmann::json& model,
                const HeldBack& held_back);

}  // namespace vort
