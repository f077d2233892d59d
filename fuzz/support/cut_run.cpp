#include "support/cut_run.h"

#include "common/stop.h"
#include "parts/model_part.h"
#include "parts/part_folder.h"
#include "parts/screen_part.h"

namespace vort::fuzz {

namespace {

Plan plan_of_study(const TaskInput& input, int best_m, int tasks) {
    Plan plan;
    plan.individuals = input.study.genotypes.individuals();
    plan.markers = input.study.genotypes.markers();
    plan.parameters.best_m = best_m;
    plan.tasks = equal_tasks(input.settings.screening.permutations + 1, tasks);
    return plan;
}

// In its folder, which is empty afterwards.
class Tasks {
  public:
    Tasks(const TaskInput& input, int best_m, int tasks)
        : input_(input),
          plan_(plan_of_study(input, best_m, tasks)),
          folder_(input.options.folder + "cut"),
          parts_(folder_, plan_, input.diagnostics) {
        folder_.make();
    }
    ~Tasks() { folder_.remove(); }
    Tasks(const Tasks&) = delete;
    Tasks& operator=(const Tasks&) = delete;

    MergedRun run(const Console& console) {
        draw_starts(input_.study, plan_.tasks, input_.study.phenotypes, input_.options.threads,
                    [&](const Task& task, std::span<const short> start) {
                        parts_.write_start(task, start);
                    });
        for (const Task& task : plan_.tasks) screen(task);
        for (const Task& task : plan_.tasks) model(task);
        return merge_parts(parts_, plan_.tasks, input_.study, input_.settings, input_.options,
                           console, input_.diagnostics);
    }

  private:
    void screen(const Task& task) const {
        const bool compares = task.first > 0 && input_.prepared.empty();
        const std::vector<double> observed =
            compares ? parts_.observed_pvalues() : std::vector<double>();
        parts_.write(task, screen_task(input_, task, rows(task), observed, true));
    }
    void model(const Task& task) const {
        const Task& first = plan_.tasks.front();
        if (task != first && !parts_.model(first).observed.exists) {
            return parts_.write(task, ModelPart{});
        }
        parts_.write(task, model_task(input_, task, rows(task), parts_.screen(task),
                                      parts_.model_start(task)));
    }
    TaskRows rows(const Task& task) const { return task_rows(input_, task, parts_.start(task)); }

    const TaskInput& input_;
    Plan plan_;
    PartFolder folder_;
    Parts parts_;
};

}  // namespace

CutRun::CutRun(const TaskInput& input, int best_m, int tasks) {
    try {
        merged =
            Tasks(input, best_m, tasks).run([this](std::string_view text) { console += text; });
    } catch (const Stop& stop) {
        stopped = std::to_string(stop.status) + ' ' + stop.text;
    }
}

}  // namespace vort::fuzz
