#include "cli/status_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <span>
#include <vector>

#include "cli/planning.h"
#include "cli/results.h"
#include "cli/task_mark.h"
#include "cli/terminal.h"
#include "common/input_error.h"
#include "report/wording.h"
#include "results/model_json.h"

namespace vort {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array kSteps = {"screen", "model"};

struct TaskState {
    Task task;
    std::string state;   // "done", "unusable", "running", "stopped" or "missing"
    std::string detail;  // what makes it unusable, or who runs it or did
};

TaskState state_of_parts(const Parts& parts, const char* step, const Task& task) {
    try {
        parts.require_usable(step, task);
        return {task, "done", ""};
    } catch (const InputError& fault) {
        return {task, "unusable", fault.text};
    }
}

TaskState state_of(const Parts& parts, const char* step, const Task& task) {
    const PartFolder& folder = parts.folder();
    const bool screen = step == std::string("screen");
    if (screen ? folder.is_screened(task.number) : folder.is_modelled(task.number)) {
        return state_of_parts(parts, step, task);
    }
    const auto worker = TaskMark::read(folder.mark_path(step, task.number));
    if (!worker) return {task, "missing", ""};
    return {task, worker->at_work ? "running" : "stopped", worker->text};
}

int permutations_of_results(const std::string& path) {
    try {
        return read_model(path + "/model.json").at("result").at("permutations").get<int>();
    } catch (const InputError&) {
    } catch (const Json::exception&) {
    }
    return -1;
}

std::vector<TaskState> states_of(const Parts& parts, const Plan& plan, const char* step) {
    std::vector<TaskState> states;
    for (const Task& task : plan.tasks) states.push_back(state_of(parts, step, task));
    return states;
}

// Those of a plan that has been made anew or extended since are no longer its own.
bool has_results(const Plan& plan, const PartFolder& folder, const std::string& path) {
    std::error_code absent;
    const auto made = std::filesystem::last_write_time(path + '/' + kRunResults.back(), absent);
    return !absent && made >= std::filesystem::last_write_time(folder.plan_path(), absent) &&
           permutations_of_results(path) == plan.parameters.permutations;
}

Json json_of(const Parts& parts, const Plan& plan, const std::string& path) {
    Json out = Json::object();
    out["tasks"] = plan.tasks.size();
    out["data_sets"] = plan.data_sets();
    for (const char* step : kSteps) {
        out[step] = Json::array();
        for (const TaskState& state : states_of(parts, plan, step)) {
            Json one = {{"task", state.task.number},
                        {"first", state.task.first},
                        {"count", state.task.count},
                        {"state", state.state}};
            if (!state.detail.empty()) {
                one[state.state == "unusable" ? "fault" : "worker"] = state.detail;
            }
            out[step].push_back(std::move(one));
        }
    }
    out["results"] = has_results(plan, parts.folder(), path);
    return out;
}

std::string range_text(int first, int last) {
    return std::to_string(first) + (last > first ? '-' + std::to_string(last) : "");
}

std::string row(std::string step, std::string tasks, std::string data_sets,
                const std::string& state) {
    step.resize(std::max(step.size(), std::size_t{8}), ' ');
    tasks.resize(std::max(tasks.size(), std::size_t{12}), ' ');
    data_sets.resize(std::max(data_sets.size(), std::size_t{16}), ' ');
    return step + tasks + data_sets + state + '\n';
}

// Neighbours of the same state share a line.
std::string table_of(std::span<const TaskState> states, const char* step) {
    std::string text;
    while (!states.empty()) {
        const TaskState& first = states.front();
        const auto other = std::ranges::find_if(states.subspan(1), [&](const TaskState& next) {
            return !first.detail.empty() || next.state != first.state || !next.detail.empty();
        });
        const auto alike = static_cast<std::size_t>(other - states.begin());
        const Task& last = states[alike - 1].task;
        text += row(step, range_text(first.task.number, last.number),
                    range_text(first.task.first, last.end() - 1),
                    first.state + (first.detail.empty() ? "" : ' ' + first.detail));
        states = states.subspan(alike);
    }
    return text;
}

}  // namespace

CLI::App* add_status_command(CLI::App& app, StatusOptions& options) {
    CLI::App* const status = app.add_subcommand("status", "how far the tasks of a plan are");
    status->add_option("DIR", options.folder, "of vort plan, or of a run")->required();
    status->add_flag("--json", options.json, "for programs");
    return status;
}

void show_status(const StatusOptions& options) {
    const PartFolder folder(options.folder);
    const Plan plan = read_plan(folder.plan_path());
    Terminal terminal;
    Diagnostics diagnostics(terminal.errors());
    const Parts parts(folder, plan, diagnostics);
    if (options.json) return terminal.print(json_of(parts, plan, options.folder).dump(2) + '\n');
    std::string text = row("STEP", "TASKS", "DATA SETS", "STATE");
    for (const char* step : kSteps) text += table_of(states_of(parts, plan, step), step);
    text += row("merge", "", "", has_results(plan, folder, options.folder) ? "done" : "missing");
    terminal.print(text);
}

}  // namespace vort
