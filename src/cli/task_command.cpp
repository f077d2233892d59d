#include "cli/task_command.h"

#include <CLI/CLI.hpp>

#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/planning.h"
#include "cli/ranges.h"
#include "cli/task_list.h"
#include "cli/task_runner.h"
#include "common/input_error.h"

namespace vort {

namespace {

constexpr const char* kScreen = "screen";
constexpr const char* kModel = "model";

RunOptions run_options(const TaskOptions& options) {
    RunOptions run;
    run.out = options.folder;
    run.threads = options.threads;
    run.quiet = options.quiet;
    return run;
}

class TaskWork {
  public:
    explicit TaskWork(const TaskOptions& options)
        : options_(options),
          folder_(options.folder),
          plan_(read_task_plan(folder_)),
          run_(planned_options(plan_, run_options(options))),
          interruption_([this] { terminal_.clear_progress(); }),
          diagnostics_(terminal_.errors()),
          parts_(folder_, plan_, diagnostics_) {}

    void run() {
        if (options_.task >= std::ssize(plan_.tasks)) {
            throw CLI::ValidationError(folder_.plan_path() + ": has tasks 0 to " +
                                       std::to_string(plan_.tasks.size() - 1) + ", not " +
                                       std::to_string(options_.task));
        }
        const Task task = plan_.tasks[static_cast<std::size_t>(options_.task)];
        if (is_finished(task)) return terminal_.say("the task is finished already");
        if (options_.step == kModel) require_screened();
        work(task);
    }

  private:
    bool is_finished(const Task& task) const;
    void require_screened() const;
    void work(const Task& task);
    bool nothing_to_model(const Task& task) const;

    const TaskOptions& options_;
    PartFolder folder_;
    Plan plan_;
    RunOptions run_;
    Terminal terminal_;
    Interruption interruption_;
    Diagnostics diagnostics_;
    Parts parts_;
};

// Reading it tells whether it is sound.
bool TaskWork::is_finished(const Task& task) const {
    if (options_.step == kScreen) {
        if (!folder_.is_screened(task.number)) return false;
        parts_.screen(task);
        parts_.draws(task);
    } else {
        if (!folder_.is_modelled(task.number)) return false;
        parts_.model(task);
    }
    return true;
}

void TaskWork::require_screened() const {
    const std::vector<int> missing = folder_.missing(kScreen, static_cast<int>(plan_.tasks.size()));
    if (missing.empty()) return;
    input_error(folder_.path(), 0,
                "lacks the screen parts of tasks " + list_text(missing) +
                    "; run vort task screen " + options_.folder + " for each of them first");
}

// Where the observed data set has no model, and its task has told so already.
bool TaskWork::nothing_to_model(const Task& task) const {
    const Task& observed = plan_.tasks.front();
    return task.number != observed.number && folder_.is_modelled(observed.number) &&
           !parts_.model(observed).observed.exists;
}

void TaskWork::work(const Task& task) {
    const bool screening = options_.step == kScreen;
    if (!screening && nothing_to_model(task)) return parts_.write(task, ModelPart{});
    const PlannedFile genotypes = genotype_file(plan_, folder_);
    const InputGuard guard(std::span(&genotypes.file.path, 1));
    const bool names = run_.fdr_report && task.first == 0;
    const LoadedAnalysis analysis = planned_analysis(plan_, parts_, run_, names);
    const int screened = screening ? task.count : 0;
    Progress progress(run_size(analysis, run_), task.count,
                      {screened, screened, task.count - screened}, terminal_, run_.quiet);
    TaskRunner runner(task_input(analysis, run_, folder_, diagnostics_, progress.tell()), parts_,
                      [&] { guard.require_unchanged(); });
    const std::vector<short> start = parts_.start(task);
    if (screening) {
        runner.screen(task, start);
    } else {
        runner.model(task, start, parts_.model_start(task));
    }
}

}  // namespace

CLI::App* add_task_command(CLI::App& app, TaskOptions& options) {
    CLI::App* const task = app.add_subcommand("task", "work on one task of a plan");
    task->add_option("STEP", options.step, "screen, or model once all tasks are screened")
        ->required()
        ->check(CLI::IsMember({kScreen, kModel}));
    task->add_option("DIR", options.folder, "of vort plan")->required();
    task->add_option("I", options.task, "the task, from 0")
        ->required()
        ->transform(whole(0, 1000000));
    add_thread_option(*task, options.threads);
    add_quiet_option(*task, options.quiet);
    return task;
}

void work_on_task(const TaskOptions& options) {
    TaskWork(options).run();
}

}  // namespace vort
