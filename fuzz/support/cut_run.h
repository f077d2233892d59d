// An analysis that is cut into tasks, each of which knows of the others what their parts say: as
// vort plan, vort task and vort merge work, in one process.
#pragma once

#include <string>

#include "parts/merge.h"
#include "parts/task.h"

namespace vort::fuzz {

struct CutRun {
    // `best_m`: markers that are searched. What the options and the study are of has to outlive it.
    CutRun(const TaskInput& input, int best_m, int tasks);

    MergedRun merged;
    std::string stopped = "goes on";  // or what with
    std::string console;
};

}  // namespace vort::fuzz
