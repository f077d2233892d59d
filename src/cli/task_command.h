// vort task: one task of a plan.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vort {

struct TaskOptions {
    std::string step;  // "screen" or "model"
    std::string folder;
    int task = 0;
    int threads = 1;
    bool quiet = false;
};

CLI::App* add_task_command(CLI::App& app, TaskOptions& options);

// Throws as run_study() does.
void work_on_task(const TaskOptions& options);

}  // namespace vort
