// vort plan: a run that is cut into tasks, for many machines.
#pragma once

#include <string>

#include "cli/run_options.h"

namespace vort {

struct PlanOptions {
    RunOptions run;
    int tasks = 0;       // 0: as the study or the earlier plan suggests
    std::string extend;  // directory of a plan that gets more data sets
};

CLI::App* add_plan_command(CLI::App& app, PlanOptions& options);

// Throws as run_study() does.
void plan_run(const PlanOptions& options, const GivenOptions& given);

}  // namespace vort
