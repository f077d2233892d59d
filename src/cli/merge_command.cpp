#include "cli/merge_command.h"

#include <CLI/CLI.hpp>

#include "cli/account.h"
#include "cli/interruption.h"
#include "cli/outcome.h"
#include "cli/planning.h"
#include "cli/results.h"
#include "cli/task_list.h"
#include "common/input_error.h"

namespace vort {

namespace {

void require_parts(const char* step, const std::vector<int>& missing, const PartFolder& folder,
                   const std::string& path) {
    if (missing.empty()) return;
    input_error(folder.path(), 0,
                std::string("lacks the ") + step + " parts of tasks " + list_text(missing) +
                    "; run vort task " + step + ' ' + path + " for each of them");
}

// Models of permuted data sets are not needed where the observed one has none.
void require_all_parts(const Plan& plan, const Parts& parts, const std::string& path) {
    const PartFolder& folder = parts.folder();
    const int tasks = static_cast<int>(plan.tasks.size());
    require_parts("screen", folder.missing("screen", tasks), folder, path);
    const bool modelled = folder.is_modelled(0);
    if (modelled && !parts.model(plan.tasks.front()).observed.exists) return;
    require_parts("model", folder.missing("model", tasks), folder, path);
}

RunLog log_of(const Plan& plan, const RunOptions& options) {
    RunLog log;
    log.command = options.words;
    log.threads = options.threads;
    for (const PlannedFile& input : plan.inputs) log.inputs.push_back({input.file, input.sha256});
    return log;
}

}  // namespace

CLI::App* add_merge_command(CLI::App& app, RunOptions& options) {
    CLI::App* const merge =
        app.add_subcommand("merge", "the results of a plan, once its tasks are finished");
    merge->add_option("DIR", options.out, "of vort plan")->required();
    merge->add_flag("--force", options.force, "replace results that are there")->group("Output");
    add_thread_option(*merge, options.threads);
    return merge;
}

void merge_run(const RunOptions& options) {
    const PartFolder part_folder(options.out);
    const Plan plan = read_task_plan(part_folder);
    const RunOptions run = planned_options(plan, options);
    Terminal terminal;
    Diagnostics diagnostics(terminal.errors());
    const Parts parts(part_folder, plan, diagnostics);
    require_all_parts(plan, parts, options.out);
    RunLog log = log_of(plan, run);
    Stopwatch watch;
    watch.begin("tables and report");
    LoadedAnalysis analysis = planned_analysis(plan, parts, run, true);
    // Whoever mapped it looked at its time; here it counts that all have mapped the same.
    require_same_bytes(genotype_file(plan, part_folder), plan.directory);
    if (run.holdout) analysis.held_back = parts.held_back();
    std::vector<std::string> inputs = paths_of(analysis.study.inputs);
    inputs.push_back(genotype_file(plan, part_folder).file.path);
    ResultFolder folder(options.out, kRunResults, options.force, inputs, terminal);
    const Interruption interruption([&] { folder.discard(); });
    tell_account(analysis.study, terminal);
    const std::string summary =
        write_outcome(analysis, parts, plan.tasks, run, folder, watch, terminal, diagnostics);
    watch.end();
    write_log(log, watch, summary, folder, terminal, diagnostics);
    folder.publish();
    terminal.print(summary);
}

}  // namespace vort
