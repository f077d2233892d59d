#include "cli/task_runner.h"

#include "cli/task_mark.h"

namespace vort {

namespace {

constexpr int kObserved = 0;  // the task that has the observed data set

}  // namespace

TaskInput task_input(const LoadedAnalysis& analysis, const RunOptions& options,
                     const PartFolder& folder, Diagnostics& diagnostics, TellWork work) {
    TaskInput input{analysis.data, analysis.settings, analysis_options(options, folder.path()),
                    diagnostics};
    input.work = std::move(work);
    input.fdr_report = options.fdr_report;
    if (!options.save_prepared.empty()) input.save_prepared = options.save_prepared + '/';
    if (!options.prepared.empty()) input.prepared = options.prepared + '/';
    return input;
}

TaskRunner::TaskRunner(TaskInput input, const Parts& parts, std::function<void()> require_sound)
    : input_(std::move(input)), parts_(parts), require_sound_(std::move(require_sound)) {}

// As the first task left them, or anew.
void TaskRunner::take_observed() {
    if (!observed_.empty() || !input_.prepared.empty()) return;
    if (parts_.folder().is_screened(kObserved)) {
        observed_ = parts_.observed_pvalues();
    } else {
        observed_ = observed_pvalues(input_);
    }
}

void TaskRunner::screen(const Task& task, std::span<const short> start, bool search) {
    const TaskMark mark(parts_.folder().mark_path("screen", task.number));
    if (task.first > 0) take_observed();
    const ScreenedTask screened =
        screen_task(input_, task, task_rows(input_, task, start), observed_, search);
    require_sound_();
    parts_.write(task, screened);
}

void TaskRunner::model(const Task& task, std::span<const short> start, const ModelStart& draws) {
    const TaskMark mark(parts_.folder().mark_path("model", task.number));
    const ModelPart modelled =
        model_task(input_, task, task_rows(input_, task, start), parts_.screen(task), draws);
    require_sound_();
    parts_.write(task, modelled);
}

bool TaskRunner::model_observed(const Task& task, std::span<const short> start) {
    if (!parts_.folder().is_modelled(kObserved)) model(task, start, {});
    return parts_.model(task).observed.exists;
}

void TaskRunner::run_all(std::span<const Task> tasks, Progress& progress) {
    std::vector<std::vector<signed char>> starts;
    draw_starts(input_.study, tasks, input_.study.phenotypes, input_.options.threads,
                [&](const Task&, std::span<const short> start) {
                    starts.emplace_back(start.begin(), start.end());
                });
    const auto start_of = [&](const Task& task) {
        const auto& narrow = starts[task.number];
        return std::vector<short>(narrow.begin(), narrow.end());
    };
    bool has_model = true;
    for (const Task& task : tasks) {
        if (!parts_.folder().is_screened(task.number)) screen(task, start_of(task), has_model);
        progress.next_task();
        if (task.first > 0) continue;
        has_model = model_observed(task, start_of(task));
        progress.next_task();
        if (has_model) continue;
        progress.drop(Stage::kSearch);
        progress.drop(Stage::kModel);
    }
    if (!has_model) return;
    ModelStart draws;
    for (const Task& task : tasks) {
        if (!parts_.folder().is_modelled(task.number)) model(task, start_of(task), draws);
        parts_.skip_draws(task, draws);
        progress.next_task();
    }
}

}  // namespace vort
