// Tasks, from parts to parts.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "cli/loaded_analysis.h"
#include "cli/progress.h"
#include "parts/part_folder.h"

namespace vort {

TaskInput task_input(const LoadedAnalysis& analysis, const RunOptions& options,
                     const PartFolder& folder, Diagnostics& diagnostics, TellWork work);

class TaskRunner {
  public:
    // `require_sound` throws where what a part is made from has changed meanwhile, so that no such
    // part is left. `parts` is not owned.
    TaskRunner(TaskInput input, const Parts& parts, std::function<void()> require_sound);

    // Each makes a part. `start`: phenotypes of the data set before the task's first one.
    void screen(const Task& task, std::span<const short> start, bool search = true);
    void model(const Task& task, std::span<const short> start, const ModelStart& draws);

    // All tasks of a run, as far as they have no part.
    void run_all(std::span<const Task> tasks, Progress& progress);

  private:
    void take_observed();
    bool model_observed(const Task& task, std::span<const short> start);

    TaskInput input_;
    const Parts& parts_;
    std::function<void()> require_sound_;
    std::vector<double> observed_;  // p-values, once they are needed
};

}  // namespace vort
