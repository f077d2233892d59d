#include "cli/planning.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "cli/run_command.h"
#include "cli/version.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/path_names.h"
#include "common/stop.h"
#include "parts/saved_study.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

// Tasks of one process: enough that little is lost by a kill, and few enough that their files cost
// nothing.
constexpr int kDataSets = 64;
constexpr int kMostTasks = 100;

std::string value_text(const std::string& name, const std::string* value) {
    if (value == nullptr) return "no --" + name;
    return "--" + name + (value->empty() ? "" : ' ' + *value);
}

// Throws CLI::ParseError where the options cannot be of a run.
RunOptions options_of(const GivenOptions& given) {
    CLI::App app;
    RunOptions options;
    add_run_command(app, options);
    std::vector<std::string> words = {"--out=.", "run"};
    for (const auto& [name, value] : given) {
        words.insert(words.begin(), "--" + name + (value.empty() ? "" : '=' + value));
    }
    app.parse(std::move(words));  // takes them from the end
    options.out.clear();
    return options;
}

// Such a run may be gone on with from anywhere.
bool names_only_absolute_paths(const RunOptions& options) {
    const StudyRequest request = study_request(options.input);
    std::vector<std::string> named = named_files(request);
    for (const std::string& folder : {options.prepared, options.save_prepared}) {
        if (!folder.empty()) named.push_back(folder);
    }
    return std::ranges::all_of(named, [](const std::string& name) { return name[0] == '/'; });
}

}  // namespace

Plan plan_for(const LoadedAnalysis& analysis, const GivenOptions& given) {
    Plan plan;
    plan.version = kVersion;
    plan.directory = fs::current_path().string();
    plan.options = given;
    plan.individuals = analysis.data.genotypes.individuals();
    plan.markers = analysis.data.genotypes.markers();
    plan.parameters = analysis.parameters;
    for (const InputFile& input : analysis.study.inputs) plan.inputs.push_back(planned_file(input));
    return plan;
}

std::vector<Task> tasks_of_one_process(const LoadedAnalysis& analysis) {
    const int permutations = analysis.parameters.permutations;
    const int least = std::max(kDataSets, (permutations + kMostTasks - 1) / kMostTasks);
    const ScreeningOptions screening =
        screening_options(analysis.data, analysis.settings, AnalysisOptions());
    const int at_once = data_sets_at_once(analysis.data.genotypes.markers(), screening);
    const int size = std::max(least / at_once, 1) * at_once;
    const RunSize run = run_size(analysis, RunOptions());
    const double search = size * expected_seconds(run)[static_cast<std::size_t>(Stage::kSearch)];
    std::vector<Task> tasks = {
        {0, 0, search > pass_seconds(run) ? 1 : std::min(size, permutations + 1)}};
    for (int first = tasks.front().end(); first <= permutations; first += size) {
        tasks.push_back(
            {static_cast<int>(tasks.size()), first, std::min(size, permutations + 1 - first)});
    }
    return tasks;
}

void write_plan(const Plan& plan, const PartFolder& folder, Diagnostics& diagnostics) {
    WholeFile file(folder.plan_path(), diagnostics);
    if (!file.is_open() || !file.write(plan_text(plan)) || !file.take_name()) stop("", 1);
}

Plan read_plan(const std::string& path) {
    return read_plan(path, kVersion);
}

void require_same_plan(const Plan& begun, const Plan& now, const std::string& path) {
    for (const PlannedFile& input : begun.inputs) require_unchanged(input, begun.directory);
    if (begun.fingerprint() == now.fingerprint() && begun.data_sets() == now.data_sets()) return;
    input_error(path, 0,
                "the study is no longer the one that the run was begun with; replace the run by "
                "--force");
}

void require_planned(const GivenOptions& given, const Plan& plan, const std::string& path,
                     std::string_view but) {
    for (const auto& [name, value] : given) {
        const std::string* const before = plan.option(name);
        if (name == but || (before != nullptr && *before == value)) continue;
        input_error(path, 0,
                    value_text(name, &value) + " was given, and the run was begun with " +
                        value_text(name, before) + "; leave it out, or replace the run by --force");
    }
}

void set_permutations(Plan& plan) {
    plan.parameters.permutations = plan.data_sets() - 1;
    const std::string text = std::to_string(plan.parameters.permutations);
    const auto there = std::ranges::find(plan.options, "permutations",
                                         &std::pair<std::string, std::string>::first);
    if (there == plan.options.end()) {
        plan.options.emplace_back("permutations", text);
    } else {
        there->second = text;
    }
}

RunOptions planned_options(const Plan& plan, const RunOptions& now) {
    RunOptions options;
    try {
        options = options_of(plan.options);
    } catch (const CLI::ParseError& error) {
        throw InputError{std::string("the plan's options cannot be used: ") + error.what()};
    }
    options.out = now.out;
    options.force = now.force;
    options.resume = now.resume;
    options.quiet = now.quiet;
    options.threads = now.threads;
    options.words = now.words;
    return options;
}

RunOptions restored_options(const Plan& plan, const RunOptions& now) {
    RunOptions options = planned_options(plan, now);
    std::error_code failure;
    if (fs::equivalent(plan.directory, fs::current_path(), failure)) return options;
    if (names_only_absolute_paths(options)) return options;
    options.out = fs::absolute(now.out).string();
    fs::current_path(plan.directory, failure);
    if (!failure) return options;
    input_error(plan.directory, 0,
                "cannot be entered (" + failure.message() +
                    "); the directory in which the run was begun was expected");
}

PlannedFile genotype_file(const Plan& plan, const PartFolder& folder) {
    PlannedFile file = plan.genotypes;
    file.file.path = file.file.path.empty() ? fs::absolute(folder.genotypes_path()).string()
                                            : path_in(plan.directory, file.file.path);
    return file;
}

LoadedAnalysis planned_analysis(const Plan& plan, const Parts& parts, const RunOptions& options,
                                bool names) {
    const PlannedFile genotypes = genotype_file(plan, parts.folder());
    require_unchanged(genotypes, plan.directory);
    for (const PlannedFile& input : plan.inputs) {
        std::error_code absent;
        const std::string path = path_in(plan.directory, input.file.path);
        // What is gone is not needed any more.
        if (fs::exists(path, absent)) require_unchanged(input, plan.directory);
    }
    const StudyFormat format = study_request(options.input).files.format;
    return loaded_analysis(options, format, names ? parts.study() : parts.people(),
                           map_genotypes(genotypes.file.path, plan.individuals, plan.markers),
                           plan.parameters);
}

Plan read_task_plan(const PartFolder& folder) {
    Plan plan = read_plan(folder.plan_path());
    if (!plan.by_run) return plan;
    input_error(folder.plan_path(), 0,
                "is of vort run; a plan of vort plan expected; go on by vort run --resume");
}

StageCounts count_todo(const Plan& plan, const PartFolder& folder) {
    StageCounts todo{};
    for (const Task& task : plan.tasks) {
        if (!folder.is_screened(task.number)) {
            todo[0] += task.count;
            todo[1] += task.count;
        }
        if (!folder.is_modelled(task.number)) todo[2] += task.count;
    }
    return todo;
}

}  // namespace vort
