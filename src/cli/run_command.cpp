#include "cli/run_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "cli/checksums.h"
#include "cli/doomed_files.h"
#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/loaded_analysis.h"
#include "cli/outcome.h"
#include "cli/planning.h"
#include "cli/progress.h"
#include "cli/result_folder.h"
#include "cli/results.h"
#include "cli/task_runner.h"
#include "common/input_error.h"
#include "common/path_names.h"
#include "common/stop.h"
#include "screening/prepared_file.h"

namespace vort {

namespace {

// One run; the members stand in the order in which they come to be.
class Run {
  public:
    Run(const RunOptions& options, const GivenOptions& given, std::optional<Plan> begun)
        : options_(options),
          given_(given),
          begun_(std::move(begun)),
          request_(study_request(options.input)),
          inputs_(named_files(request_)),
          folder_(options.out, kRunResults, options.force || options.resume, named_files(request_),
                  terminal_),
          part_folder_(folder_.path()),
          interruption_([this] { leave(); }),
          diagnostics_(terminal_.errors()) {
        inputs_.add_folder(request_.files.directory);
        request_.threads = options.threads;
        log_.command = options.words;
        log_.threads = options.threads;
    }
    ~Run() {
        if (!done_) leave();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void run() try {
        load();
        check();
        plan();
        work();
        merge();
        finish();
    } catch (const Stop&) {
        // What stopped it may be an input that is no longer what it was.
        inputs_.require_unchanged();
        throw;
    }

  private:
    void load();
    void check();
    void require_prepared();
    std::vector<std::string> prepared_files(const std::string& folder) const;
    void plan();
    void work();
    void note_checksums();
    void merge();
    void finish();
    void forget_parts() const noexcept;
    void leave() noexcept;

    const RunOptions& options_;
    const GivenOptions& given_;
    std::optional<Plan> begun_;
    StudyRequest request_;
    Terminal terminal_;
    InputGuard inputs_;
    ResultFolder folder_;
    PartFolder part_folder_;
    Interruption interruption_;
    Diagnostics diagnostics_;
    Stopwatch watch_;
    RunLog log_;
    bool done_ = false;

    LoadedAnalysis analysis_;
    std::unique_ptr<Checksums> checksums_;
    Plan plan_;
    std::string summary_;
};

void Run::load() {
    watch_.begin("reading the study");
    analysis_ = load_analysis(options_, request_, terminal_);
    const std::vector<std::string> inputs = paths_of(analysis_.study.inputs);
    folder_.require_apart(inputs);
    require_apart(inputs, part_folder_.own_files());
    checksums_ = std::make_unique<Checksums>(analysis_.study.inputs);
}

void Run::check() {
    check_sizes(analysis_.settings, analysis_options(options_, ""),
                analysis_.data.genotypes.is_mapped(), diagnostics_);
    folder_.require_room(result_bytes(analysis_, options_));
    if (!options_.prepared.empty()) require_prepared();
    if (options_.save_prepared.empty()) return;
    std::vector<std::string> written = prepared_files(options_.save_prepared);
    std::erase_if(written, [](const std::string& path) {  // a link is replaced, not what it names
        return std::filesystem::is_symlink(path);
    });
    require_apart(paths_of(analysis_.study.inputs), written);
    std::filesystem::create_directories(options_.save_prepared);
}

// Of all data sets; none where there is no folder of them.
std::vector<std::string> Run::prepared_files(const std::string& folder) const {
    std::vector<std::string> files;
    if (folder.empty()) return files;
    for (int d = 0; d <= analysis_.parameters.permutations; ++d) {
        files.push_back(prepared_file_name(folder + '/', d));
    }
    return files;
}

// Prepared files of another study would be taken as this one's.
void Run::require_prepared() {
    const std::vector<std::string> files = prepared_files(options_.prepared);
    inputs_.add(files);
    for (std::size_t d = 0; d < files.size(); ++d) {
        const std::string& path = files[d];
        if (!std::filesystem::is_regular_file(path)) {
            input_error(path, 0,
                        "is not there; a file for each data set expected; make them by "
                        "--save-prepared");
        }
        require_prepared_for(path, analysis_.data.phenotypes, analysis_.data.clusters,
                             analysis_.parameters.best_m, analysis_.data.genotypes.markers(),
                             d == 0);
    }
    folder_.require_apart(files);
}

// Of its own data sets; or the one that was begun, if it is the same.
void Run::plan() {
    plan_ = plan_for(analysis_, given_);
    plan_.by_run = true;
    plan_.tasks = tasks_of_one_process(analysis_);
    set_permutations(plan_);
    for (const std::string& path : prepared_files(options_.prepared)) {
        plan_.inputs.push_back(planned_file({"prepared", path}));
    }
    if (begun_) {
        plan_.directory = begun_->directory;  // all paths are absolute if it is another one
        require_same_plan(*begun_, plan_, part_folder_.plan_path());
        plan_.inputs = begun_->inputs;
        plan_.tasks = begun_->tasks;
        return;
    }
    part_folder_.remove();
    part_folder_.make();
    write_plan(plan_, part_folder_, diagnostics_);
}

void Run::work() {
    watch_.begin("tasks");
    const Parts parts(part_folder_, plan_, diagnostics_);
    StageCounts todo = count_todo(plan_, part_folder_);
    if (begun_) {
        terminal_.say("goes on where the earlier run was: " +
                      std::to_string(plan_.data_sets() - todo.front()) + " of " +
                      std::to_string(plan_.data_sets()) + " data sets are screened");
    }
    Progress progress(run_size(analysis_, options_), plan_.data_sets(), todo, terminal_,
                      options_.quiet);
    TaskRunner runner(task_input(analysis_, options_, part_folder_, diagnostics_, progress.tell()),
                      parts, [this] {
                          inputs_.require_unchanged();
                          note_checksums();
                      });
    runner.run_all(plan_.tasks, progress);
    progress.finish();
    watch_.share({{"screening", progress.seconds(Stage::kScreen)},
                  {"search", progress.seconds(Stage::kSearch)},
                  {"models", progress.seconds(Stage::kModel)}});
}

// For whoever goes on with the run: from then on an input may get another time.
void Run::note_checksums() {
    if (plan_.inputs.empty() || !plan_.inputs.front().sha256.empty()) return;
    const std::vector<Checksum>& taken = checksums_->all();
    for (std::size_t k = 0; k < taken.size(); ++k) plan_.inputs[k].sha256 = taken[k].sha256;
    write_plan(plan_, part_folder_, diagnostics_);
}

void Run::merge() {
    watch_.begin("tables and report");
    const Parts parts(part_folder_, plan_, diagnostics_);
    summary_ = write_outcome(analysis_, parts, plan_.tasks, options_, folder_, watch_, terminal_,
                             diagnostics_);
}

void Run::finish() {
    watch_.begin("checksums of the inputs");
    log_.inputs = checksums_->all();
    for (const Checksum& input : log_.inputs) {
        if (input.sha256 == kNotReadAgain) {
            terminal_.say(input.file.path + ": " + input.sha256 + ", so it has no checksum");
        }
    }
    watch_.end();
    inputs_.require_unchanged();
    write_log(log_, watch_, summary_, folder_, terminal_, diagnostics_);
    folder_.publish();
    done_ = true;
    forget_parts();
    terminal_.print(summary_);
}

// The results are there, whatever becomes of these.
void Run::forget_parts() const noexcept {
    try {
        part_folder_.remove();
    } catch (const std::exception&) {
        // No memory for their names.
    }
}

// What is finished stays for --resume.
void Run::leave() noexcept {
    try {
        terminal_.clear_progress();
        folder_.discard();
        if (plan_.tasks.empty()) return;
        const bool usable = std::filesystem::exists(part_folder_.plan_path()) &&
                            part_folder_.is_screened(0) && inputs_.are_unchanged();
        if (!usable) return part_folder_.remove();
        terminal_.say("what is finished stays in " + part_folder_.path() +
                      "; vort run --resume --out " + folder_.path() + " goes on with it");
    } catch (const std::exception&) {
        // No memory to tell of it with; it stays nevertheless.
    }
}

std::optional<Plan> begun_plan(const RunOptions& options) {
    const PartFolder parts(options.out);
    std::error_code failure;
    if (!std::filesystem::exists(parts.plan_path(), failure)) {
        if (failure) input_error(parts.plan_path(), 0, "cannot be read: " + failure.message());
        return std::nullopt;
    }
    if (options.force && !options.resume) {
        require_plan(parts.plan_path());
        return std::nullopt;
    }
    Plan plan = read_plan(parts.plan_path());
    if (!plan.by_run) {
        input_error(parts.plan_path(), 0,
                    "is a plan of vort plan; go on with it by vort task and vort merge, or replace "
                    "it by --force");
    }
    if (options.resume) return plan;
    input_error(parts.plan_path(), 0,
                "a run was begun there; go on with it by --resume, or replace it by --force");
}

// Whoever goes on with a run writes nowhere but where the own words say.
void require_given_again(const GivenOptions& given, const Plan& begun, const std::string& path) {
    const std::string* const folder = begun.option("save-prepared");
    const auto is_it = [](const auto& option) { return option.first == "save-prepared"; };
    if (folder == nullptr || std::ranges::any_of(given, is_it)) return;
    input_error(path, 0,
                "the run also writes to " + *folder + "; say so again: --save-prepared " + *folder);
}

}  // namespace

CLI::App* add_run_command(CLI::App& app, RunOptions& options) {
    CLI::App* const run = app.add_subcommand("run", "analyse a study: all results in a directory");
    add_run_options(*run, options);
    run->add_option("--out", options.out, "directory of the results")
        ->type_name("DIR")
        ->required()
        ->group("Output");
    run->add_flag("--resume", options.resume,
                  "go on with a run that was killed; its options need not be given again, "
                  "but for --save-prepared")
        ->group("Output");
    constexpr const char* kSteps = "Steps and comparisons";
    run->add_option("--save-prepared", options.save_prepared,
                    "keep rankings and phenotypes of all data sets in DIR")
        ->type_name("DIR")
        ->group(kSteps);
    run->add_option("--prepared", options.prepared, "take them from DIR instead of screening")
        ->type_name("DIR")
        ->group(kSteps);
    return run;
}

void run_study(RunOptions options, const GivenOptions& given) {
    std::optional<Plan> begun = begun_plan(options);
    if (!begun && options.resume && !is_chosen(options.input)) {
        throw CLI::ValidationError(options.out +
                                   ": no run was begun there, or it has ended; one that is to be "
                                   "begun needs its input");
    }
    if (!begun) return Run(options, given, std::nullopt).run();
    const std::string path = PartFolder(options.out).plan_path();
    require_planned(given, *begun, path);
    require_given_again(given, *begun, path);
    const GivenOptions planned = begun->options;
    options = restored_options(*begun, options);
    Run(options, planned, std::move(begun)).run();
}

}  // namespace vort
