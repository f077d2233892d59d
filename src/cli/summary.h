// The end of a run in some fifteen lines, for standard output.
#pragma once

#include <string>

#include "results/model_json.h"

namespace vort {

// `model`: as in model.json.
std::string summary_text(const ModelDescription& run, const nlohmann::json& model,
                         const std::string& folder, double seconds);

}  // namespace vort
