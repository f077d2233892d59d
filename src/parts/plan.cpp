#include "parts/plan.h"

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cmath>
#include <nlohmann/json.hpp>

#include "common/input_error.h"
#include "common/path_names.h"
#include "parts/file_checksum.h"
#include "parts/sha256.h"
#include "results/table_text.h"

namespace vort {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kExpected = "a plan of vort plan expected";
constexpr const char* kFormat = "vort-plan";
constexpr int kFormatVersion = 1;
constexpr int kIndent = 2;
constexpr std::size_t kLongest = std::size_t{1} << 28;
constexpr int kDeepest = 1000;  // beyond, a reader might run out of stack

Json json_of(const PlannedFile& planned) {
    return {{"role", planned.file.role},
            {"path", planned.file.path},
            {"size", planned.size},
            {"modified", planned.modified},
            {"sha256", planned.sha256}};
}

// A copy of the same bytes will do; a run begins before it knows their checksum.
Json lasting(const PlannedFile& planned, bool by_run) {
    Json out = json_of(planned);
    out.erase("modified");
    if (by_run) out.erase("sha256");
    return out;
}

// What the fingerprint is of, and a part has to be of.
Json lasting(const Plan& plan) {
    Json out = Json::object();
    out["format"] = kFormat;
    out["format_version"] = kFormatVersion;
    out["program"] = {{"name", "vort"}, {"version", plan.version}};
    out["made_by"] = plan.by_run ? "run" : "plan";
    out["directory"] = plan.directory;
    out["options"] = Json::array();
    for (const auto& [name, value] : plan.options) {
        if (name != "permutations") out["options"].push_back({name, value});
    }
    out["study"] = {{"individuals", plan.individuals}, {"markers", plan.markers}};
    out["parameters"] = {{"best_m", plan.parameters.best_m},
                         {"max_retain", plan.parameters.max_retain},
                         {"fdr", plan.parameters.fdr}};
    out["inputs"] = Json::array();
    for (const PlannedFile& input : plan.inputs) {
        out["inputs"].push_back(lasting(input, plan.by_run));
    }
    out["genotypes"] = lasting(plan.genotypes, plan.by_run);
    return out;
}

std::string text_of(const Json& json) {
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace);
}

struct Contradiction {};

void require(bool sound) {
    if (!sound) throw Contradiction();
}

template <typename T>
T whole_number(const Json& json) {
    require(json.is_number_integer());
    return json.get<T>();
}

PlannedFile planned_file_of(const Json& json) {
    PlannedFile planned;
    planned.file = {json.at("role").get<std::string>(), json.at("path").get<std::string>()};
    planned.size = whole_number<std::uintmax_t>(json.at("size"));
    planned.modified = whole_number<std::int64_t>(json.at("modified"));
    planned.sha256 = json.at("sha256").get<std::string>();
    return planned;
}

Json json_of(const TaskNeeds& needs) {
    constexpr double kHour = 3600;
    constexpr double kMerge = 900;  // seconds, for which no parts but the very largest are too many
    const auto stage = [&](double seconds) -> Json {
        return {{"hours", std::ceil(seconds / kHour * 1000) / 1000},
                {"memory_mb", std::ceil(needs.bytes / 1e6)}};
    };
    return {{"threads", needs.threads},
            {"screen", stage(needs.screen_seconds)},
            {"model", stage(needs.model_seconds)},
            {"merge", stage(kMerge)}};
}

// Of a number that a reader must not take as it comes.
int count_of(const Json& json, int least) {
    const auto number = whole_number<std::int64_t>(json);
    require(number >= least && number < INT_MAX);
    return static_cast<int>(number);
}

std::vector<Task> tasks_of(const Json& json) {
    std::vector<Task> tasks;
    int first = 0;
    for (const Json& one : json) {
        const Task task{count_of(one.at("task"), 0), count_of(one.at("first"), 0),
                        count_of(one.at("count"), 1)};
        require(std::cmp_equal(task.number, tasks.size()) && task.first == first);
        require(task.count < INT_MAX - task.first);
        first = task.end();
        tasks.push_back(task);
    }
    require(!tasks.empty());
    return tasks;
}

Plan parsed(const Json& json) {
    Plan plan;
    plan.version = json.at("program").at("version").get<std::string>();
    plan.by_run = json.at("made_by") == "run";
    plan.directory = json.at("directory").get<std::string>();
    for (const Json& option : json.at("options")) {
        plan.options.emplace_back(option.at(0).get<std::string>(), option.at(1).get<std::string>());
    }
    plan.individuals = count_of(json.at("study").at("individuals"), 1);
    plan.markers = count_of(json.at("study").at("markers"), 1);
    const Json& parameters = json.at("parameters");
    plan.parameters.best_m = count_of(parameters.at("best_m"), 1);
    plan.parameters.max_retain = count_of(parameters.at("max_retain"), INT_MIN);
    plan.parameters.fdr = parameters.at("fdr").get<double>();
    for (const Json& input : json.at("inputs")) plan.inputs.push_back(planned_file_of(input));
    plan.genotypes = planned_file_of(json.at("genotypes"));
    plan.tasks = tasks_of(json.at("tasks"));
    plan.parameters.permutations = plan.data_sets() - 1;
    const std::string* const permutations = plan.option("permutations");
    require(permutations != nullptr &&
            *permutations == std::to_string(plan.parameters.permutations));
    require(json.at("fingerprint") == plan.fingerprint());
    require(plan.parameters.best_m <= plan.markers);
    return plan;
}

Json json_of_plan(const std::string& text, const std::string& path) {
    Json json;
    if (text.size() <= kLongest && nesting_of(text) <= kDeepest) {
        json = Json::parse(text, nullptr, false);
    }
    if (json.is_object() && json.contains("format") && json["format"] == kFormat) return json;
    input_error(path, 0, "is no plan; one that vort plan or vort run has made expected");
}

[[noreturn]] void refuse_changed(const std::string& path) {
    input_error(path, 0,
                "has changed since the plan was made or the run begun; begin anew in another "
                "directory, or by --force");
}

}  // namespace

const std::string* Plan::option(const std::string& name) const {
    const auto found =
        std::ranges::find(options, name, &std::pair<std::string, std::string>::first);
    return found == options.end() ? nullptr : &found->second;
}

int Plan::most_data_sets() const {
    int most = 0;
    for (const Task& task : tasks) most = std::max(most, task.count);
    return most;
}

std::string Plan::fingerprint() const {
    return sha256(text_of(lasting(*this)));
}

void require_lasting_names(const Plan& plan) {
    std::vector<std::string> names = {plan.directory};
    for (const PlannedFile& input : plan.inputs) names.push_back(input.file.path);
    for (const auto& [name, value] : plan.options) names.push_back(value);
    for (const std::string& name : names) {
        const std::string text = text_of(name);
        if (Json::parse(text).get_ref<const std::string&>() == name) continue;
        input_error(name, 0, "is not UTF-8, which a plan's names have to be; rename it");
    }
}

std::string plan_text(const Plan& plan) {
    Json out = lasting(plan);
    for (std::size_t k = 0; k < plan.inputs.size(); ++k) {
        out["inputs"][k] = json_of(plan.inputs[k]);
    }
    out["genotypes"] = json_of(plan.genotypes);
    out["options"] = Json::array();
    for (const auto& [name, value] : plan.options) out["options"].push_back({name, value});
    out["fingerprint"] = plan.fingerprint();
    out["data_sets"] = plan.data_sets();
    if (!plan.by_run) out["estimates"] = json_of(plan.needs);
    out["tasks"] = Json::array();
    for (const Task& task : plan.tasks) {
        const std::int64_t before = std::max(task.first - 1, 0);
        out["tasks"].push_back({{"task", task.number},
                                {"first", task.first},
                                {"count", task.count},
                                {"draws_before", before * plan.individuals}});
    }
    return text_of(out) + '\n';
}

Plan plan_of(const std::string& text, const std::string& path, const std::string& version) {
    const Json json = json_of_plan(text, path);
    try {
        Plan plan = parsed(json);
        if (plan.version == version) return plan;
        input_error(path, 0,
                    "is a plan of version " + plan.version + "; one of version " + version +
                        " expected; go on with that version, or plan anew");
    } catch (const Json::exception&) {
    } catch (const Contradiction&) {
    }
    input_error(path, 0, "is a plan that has been changed; plan anew");
}

Plan read_plan(const std::string& path, const std::string& version) {
    return plan_of(read_bytes(path, kExpected), path, version);
}

void require_plan(const std::string& path) {
    json_of_plan(read_bytes(path, kExpected), path);
}

PlannedFile planned_file(const InputFile& file) {
    struct stat found {};
    PlannedFile planned{file, 0, 0, ""};
    if (::stat(file.path.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) return planned;
    constexpr std::int64_t kSecond = 1000000000;
    planned.size = static_cast<std::uintmax_t>(found.st_size);
    planned.modified = found.st_mtim.tv_sec * kSecond + found.st_mtim.tv_nsec;
    return planned;
}

void require_unchanged(const PlannedFile& planned, const std::string& directory) {
    const std::string path = path_in(directory, planned.file.path);
    const PlannedFile found = planned_file({planned.file.role, path});
    if (found.size == planned.size && found.modified == planned.modified) return;
    if (found.modified == 0) {
        input_error(path, 0, "cannot be found; it is an input of the plan; put it back");
    }
    if (found.size != planned.size || planned.sha256.empty()) refuse_changed(path);
    require_same_bytes(planned, directory);
}

void require_same_bytes(const PlannedFile& planned, const std::string& directory) {
    const std::string path = path_in(directory, planned.file.path);
    const std::atomic<bool> wanted{true};
    if (sha256_of(path, wanted) != planned.sha256) refuse_changed(path);
}

}  // namespace vort
