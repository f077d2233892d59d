// What a plan says of its tasks.
#pragma once

#include <string>

#include "cli/loaded_analysis.h"
#include "parts/plan.h"

namespace vort {

// Time and memory of the largest task, by the formula.
TaskNeeds task_needs(const LoadedAnalysis& analysis, const Plan& plan, const RunOptions& options);

// These, the tasks, and what to do next, for standard output.
std::string plan_summary(const Plan& plan, const std::string& folder);

}  // namespace vort
