#include "cli/plan_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "cli/checksums.h"
#include "cli/doomed_files.h"
#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/outcome.h"
#include "cli/plan_text.h"
#include "cli/planning.h"
#include "cli/ranges.h"
#include "cli/result_folder.h"
#include "cli/results.h"
#include "common/directory_lock.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "parts/saved_study.h"

namespace vort {

namespace {

constexpr const char* kPlanFile[] = {kPlanName};
constexpr int kMostTasks = 100000;

// What tasks are to compare with what they find.
void require_known(const PlannedFile& planned, const std::string& path) {
    const bool regular = planned.sha256.front() != '(';
    if (planned.sha256 != kNotReadAgain && (planned.modified != 0 || !regular)) return;
    input_error(path, 0, "could not be read again for its checksum; plan anew");
}

// A new one; the members stand in the order in which they come to be.
class Planner {
  public:
    Planner(const PlanOptions& options, const GivenOptions& given)
        : options_(options),
          given_(given),
          request_(study_request(options.run.input)),
          inputs_(named_files(request_)),
          folder_(options.run.out, kPlanFile, options.run.force, named_files(request_), terminal_),
          part_folder_(folder_.path()),
          interruption_([this] { folder_.discard(); }),
          diagnostics_(terminal_.errors()) {
        inputs_.add_folder(request_.files.directory);
        request_.threads = options.run.threads;
        if (!options.run.force) require_no_results();
    }

    void plan() {
        load();
        write_parts();
        inputs_.require_unchanged();
        publish();
    }

  private:
    void require_no_results() const;
    void load();
    void write_parts();
    void write_starts(const Parts& parts) const;
    void save_genotypes();
    void publish();

    const PlanOptions& options_;
    const GivenOptions& given_;
    StudyRequest request_;
    Terminal terminal_;
    InputGuard inputs_;
    ResultFolder folder_;
    PartFolder part_folder_;
    Interruption interruption_;
    Diagnostics diagnostics_;
    LoadedAnalysis analysis_;
    Plan plan_;
};

void Planner::require_no_results() const {
    for (const char* name : kRunResults) {
        const std::string path = folder_.path() + '/' + name;
        std::error_code absent;
        if (!std::filesystem::exists(path, absent)) continue;
        input_error(path, 0, "is there already; name another directory, or replace it by --force");
    }
}

void Planner::load() {
    analysis_ = load_analysis(options_.run, request_, terminal_);
    const std::vector<std::string> inputs = paths_of(analysis_.study.inputs);
    folder_.require_apart(inputs);
    require_apart(inputs, part_folder_.own_files());
    check_sizes(analysis_.settings, analysis_options(options_.run, ""),
                analysis_.data.genotypes.is_mapped(), diagnostics_);
    const Genotypes& genotypes = analysis_.data.genotypes;
    const int held_back = analysis_.held_back ? analysis_.held_back->genotypes.individuals() : 0;
    const int copied = (genotypes.is_mapped() ? 0 : genotypes.individuals()) + held_back;
    folder_.require_room(result_bytes(analysis_, options_.run) +
                         0.25 * copied * genotypes.markers());
}

// Before the plan, which says that all of it is there.
void Planner::write_parts() {
    Checksums checksums(analysis_.study.inputs);
    plan_ = plan_for(analysis_, given_);
    plan_.tasks = equal_tasks(analysis_.parameters.permutations + 1, options_.tasks);
    set_permutations(plan_);
    require_lasting_names(plan_);
    part_folder_.remove();
    part_folder_.make();
    save_genotypes();
    const std::vector<Checksum>& taken = checksums.all();
    for (std::size_t k = 0; k < taken.size(); ++k) plan_.inputs[k].sha256 = taken[k].sha256;
    for (const PlannedFile& input : plan_.inputs) {
        require_known(input, input.file.path);
        if (analysis_.data.genotypes.is_mapped() && input.file.role == "bed") {
            plan_.genotypes = input;
        }
    }
    const Parts parts(part_folder_, plan_, diagnostics_);
    parts.write_study(analysis_.study);
    if (analysis_.held_back) parts.write_held_back(*analysis_.held_back);
    write_starts(parts);
}

void Planner::save_genotypes() {
    if (analysis_.data.genotypes.is_mapped()) return;
    const std::string path = part_folder_.genotypes_path();
    write_genotypes(analysis_.data.genotypes, path, diagnostics_);
    const std::atomic<bool> wanted{true};
    plan_.genotypes = planned_file({"genotypes", std::filesystem::absolute(path).string()});
    plan_.genotypes.file.path.clear();
    plan_.genotypes.sha256 = sha256_of(path, wanted);
    require_known(plan_.genotypes, path);
}

void Planner::write_starts(const Parts& parts) const {
    draw_starts(
        analysis_.data, plan_.tasks, analysis_.data.phenotypes, options_.run.threads,
        [&](const Task& task, std::span<const short> start) { parts.write_start(task, start); });
}

void Planner::publish() {
    plan_.needs = task_needs(analysis_, plan_, options_.run);
    OutputFile file(folder_.unfinished() + kPlanName, OutputFile::Mode::kTruncate, diagnostics_);
    file << plan_text(plan_);
    if (!file.close()) stop("", 1);
    const std::string told = plan_summary(plan_, folder_.path());
    folder_.publish();
    terminal_.print(told);
}

// Further tasks, of the size of those that are there.
std::vector<Task> further_tasks(const Plan& plan, int data_sets, int wanted) {
    const int more = data_sets - plan.data_sets();
    const int size = plan.tasks.front().count;
    const int tasks = wanted > 0 ? wanted : std::max((more + size - 1) / size, 1);
    std::vector<Task> added = equal_tasks(more, tasks);
    for (Task& task : added) {
        task.number += static_cast<int>(plan.tasks.size());
        task.first += plan.data_sets();
    }
    return added;
}

void add_tasks(Plan& plan, std::span<const Task> added, const PartFolder& folder,
               const LoadedAnalysis& analysis, int threads, Diagnostics& diagnostics) {
    const Task last = plan.tasks.back();
    const std::vector<short> start = Parts(folder, plan, diagnostics).start(last);
    plan.tasks.insert(plan.tasks.end(), added.begin(), added.end());
    set_permutations(plan);
    const Parts parts(folder, plan, diagnostics);
    draw_starts(analysis.data, std::span(plan.tasks).subspan(last.number), start, threads,
                [&](const Task& task, std::span<const short> drawn) {
                    if (task != last) parts.write_start(task, drawn);
                });
}

// Said again, as after a kill, there is nothing to add.
void extend_plan(const PlanOptions& options, const GivenOptions& given) {
    const PartFolder folder(options.extend);
    const DirectoryLock lock(options.extend);
    if (!lock.held()) {
        input_error(options.extend, 0, "another process is at work there; wait for it");
    }
    Plan plan = read_task_plan(folder);
    require_planned(given, plan, folder.plan_path(), "permutations");
    if (!options.run.parameters.permutations) {
        throw CLI::ValidationError("--extend needs --permutations N, how many there are to be");
    }
    const int data_sets = *options.run.parameters.permutations + 1;
    if (data_sets < plan.data_sets()) {
        input_error(folder.plan_path(), 0,
                    "has " + std::to_string(plan.data_sets() - 1) +
                        " permutations; that many or more expected with --extend");
    }
    Terminal terminal;
    Diagnostics diagnostics(terminal.errors());
    RunOptions run = planned_options(plan, options.run);
    const LoadedAnalysis analysis =
        planned_analysis(plan, Parts(folder, plan, diagnostics), run, false);
    const bool more = data_sets > plan.data_sets();
    if (more) {
        add_tasks(plan, further_tasks(plan, data_sets, options.tasks), folder, analysis,
                  options.run.threads, diagnostics);
    }
    plan.needs = task_needs(analysis, plan, run);
    if (more) write_plan(plan, folder, diagnostics);
    terminal.print(plan_summary(plan, options.extend));
}

}  // namespace

CLI::App* add_plan_command(CLI::App& app, PlanOptions& options) {
    CLI::App* const plan =
        app.add_subcommand("plan", "cut a run into tasks, for many machines; then vort task");
    add_run_options(*plan, options.run);
    constexpr const char* kPlan = "Plan";
    plan->add_option("--out", options.run.out, "directory of the plan, its parts and the results")
        ->type_name("DIR")
        ->group(kPlan);
    plan->add_option("--tasks", options.tasks, "in how many tasks; at most one for a data set")
        ->type_name("K")
        ->transform(whole(1, kMostTasks))
        ->group(kPlan);
    plan->add_option("--extend", options.extend,
                     "add data sets to the plan in DIR, up to --permutations")
        ->type_name("DIR")
        ->group(kPlan);
    return plan;
}

void plan_run(const PlanOptions& options, const GivenOptions& given) {
    if (!options.extend.empty()) {
        if (!options.run.out.empty()) {
            throw CLI::ValidationError("--extend takes no --out; the plan stays where it is");
        }
        return extend_plan(options, given);
    }
    if (options.run.out.empty()) throw CLI::ValidationError("--out DIR is required");
    if (options.tasks == 0) throw CLI::ValidationError("--tasks K is required");
    Planner(options, given).plan();
}

}  // namespace vort
