#include "prediction/evaluation.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "results/json_values.h"

namespace vort {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostGroups = 10;
constexpr long kMostPeople = 1'000'000'000;
constexpr double kFarthest = 1e6;  // of a risk, whose range is 1

struct Outcome {
    double risk;
    bool is_case;
};

std::vector<Outcome> outcomes_by_risk(std::span<const double> risks,
                                      std::span<const short> phenotypes) {
    std::vector<Outcome> outcomes;
    outcomes.reserve(risks.size());
    for (std::size_t i = 0; i < risks.size(); ++i) {
        const bool known = phenotypes[i] == 0 || phenotypes[i] == 1;
        if (known && !std::isnan(risks[i])) outcomes.push_back({risks[i], phenotypes[i] == 1});
    }
    std::ranges::stable_sort(outcomes, {}, &Outcome::risk);
    return outcomes;
}

RocArea roc_of(std::span<const Outcome> outcomes) {
    std::vector<double> cases;
    std::vector<double> controls;
    for (const Outcome& outcome : outcomes) {
        (outcome.is_case ? cases : controls).push_back(outcome.risk);
    }
    return roc_area(cases, controls);
}

double squared(double value) {
    return value * value;
}

RiskGroup group_of(std::span<const Outcome> outcomes) {
    RiskGroup group;
    group.lowest = outcomes.front().risk;
    group.highest = outcomes.back().risk;
    group.individuals = std::ssize(outcomes);
    group.cases = std::ranges::count(outcomes, true, &Outcome::is_case);
    double sum = 0;
    for (const Outcome& outcome : outcomes) sum += outcome.risk;
    group.mean = sum / static_cast<double>(group.individuals);
    group.observed =
        clopper_pearson(static_cast<int>(group.cases), static_cast<int>(group.individuals));
    return group;
}

// The end of those of equal risk that begin at `begin`.
std::size_t end_of_equal(std::span<const Outcome> outcomes, std::size_t begin) {
    std::size_t end = begin;
    while (end < outcomes.size() && outcomes[end].risk == outcomes[begin].risk) ++end;
    return end;
}

// Where the groups end. One ends where a tenth of all people does, or behind those of equal risk
// there, unless it has less than half a tenth; then it goes on.
std::vector<std::size_t> group_ends(std::span<const Outcome> outcomes) {
    const std::size_t n = outcomes.size();
    std::vector<std::size_t> ends{0};
    std::size_t tenth = 1;
    for (std::size_t end = 0; end < n;) {
        end = end_of_equal(outcomes, end);
        if (kMostGroups * end < tenth * n || 2 * kMostGroups * (end - ends.back()) < n) continue;
        ends.push_back(end);
        tenth = kMostGroups * end / n + 1;
    }
    ends.back() = n;
    return ends;
}

std::vector<RiskGroup> calibration_of(std::span<const Outcome> outcomes) {
    const std::vector<std::size_t> ends = group_ends(outcomes);
    std::vector<RiskGroup> groups;
    groups.reserve(ends.size());
    for (std::size_t g = 1; g < ends.size(); ++g) {
        groups.push_back(group_of(outcomes.subspan(ends[g - 1], ends[g] - ends[g - 1])));
    }
    return groups;
}

Json number_or_null(double value) {
    return std::isnan(value) ? Json(nullptr) : Json(value);
}

Json interval_json(const Interval& interval) {
    return std::isnan(interval.low) ? Json(nullptr) : Json{interval.low, interval.high};
}

double number(const nlohmann::json& from, const char* key, double least, double most) {
    const nlohmann::json& value = from.at(key);
    if (value.is_null()) return std::numeric_limits<double>::quiet_NaN();
    return number_of(value, key, least, most);
}

Interval read_interval(const nlohmann::json& from) {
    if (from.is_null()) return RocArea{}.interval;
    return {number_of(from.at(0), "an interval", 0, 1), number_of(from.at(1), "an interval", 0, 1)};
}

long count(const nlohmann::json& from, const char* key) {
    return whole_of(from.at(key), key, 0, kMostPeople);
}

RiskGroup read_group(const nlohmann::json& from) {
    RiskGroup group;
    group.lowest = number_of(from.at("lowest"), "a risk", -kFarthest, kFarthest);
    group.highest = number_of(from.at("highest"), "a risk", -kFarthest, kFarthest);
    group.mean = number_of(from.at("mean_risk"), "a risk", -kFarthest, kFarthest);
    group.individuals = whole_of(from.at("individuals"), "individuals", 1, kMostPeople);
    group.cases = whole_of(from.at("cases"), "cases", 0, group.individuals);
    group.observed = read_interval(from.at("cases_interval"));
    return group;
}

}  // namespace

Evaluation evaluate(std::span<const double> risks, std::span<const short> phenotypes,
                    double share) {
    const std::vector<Outcome> outcomes = outcomes_by_risk(risks, phenotypes);
    Evaluation evaluation;
    evaluation.cases = std::ranges::count(outcomes, true, &Outcome::is_case);
    evaluation.controls = std::ssize(outcomes) - evaluation.cases;
    if (outcomes.empty()) return evaluation;
    evaluation.roc = roc_of(outcomes);
    double fitted = 0;
    double constant = 0;
    for (const Outcome& outcome : outcomes) {
        const double y = outcome.is_case ? 1 : 0;
        fitted += squared(outcome.risk - y);
        constant += squared(share - y);
    }
    const auto n = static_cast<double>(outcomes.size());
    evaluation.brier = fitted / n;
    evaluation.brier_without_model = constant / n;
    evaluation.calibration = calibration_of(outcomes);
    return evaluation;
}

nlohmann::ordered_json evaluation_json(const Evaluation& evaluation) {
    Json out = Json::object();
    out["cases"] = evaluation.cases;
    out["controls"] = evaluation.controls;
    out["auc"] = number_or_null(evaluation.roc.area);
    out["auc_standard_error"] = number_or_null(evaluation.roc.standard_error);
    out["auc_interval"] = interval_json(evaluation.roc.interval);
    out["brier"] = number_or_null(evaluation.brier);
    out["brier_without_model"] = number_or_null(evaluation.brier_without_model);
    out["calibration"] = Json::array();
    for (const RiskGroup& group : evaluation.calibration) {
        out["calibration"].push_back({{"lowest", group.lowest},
                                      {"highest", group.highest},
                                      {"mean_risk", group.mean},
                                      {"individuals", group.individuals},
                                      {"cases", group.cases},
                                      {"cases_interval", interval_json(group.observed)}});
    }
    return out;
}

Evaluation read_evaluation(const nlohmann::json& from) {
    Evaluation evaluation;
    evaluation.cases = count(from, "cases");
    evaluation.controls = count(from, "controls");
    evaluation.roc.area = number(from, "auc", 0, 1);
    evaluation.roc.standard_error = number(from, "auc_standard_error", 0, 1);
    evaluation.roc.interval = read_interval(from.at("auc_interval"));
    evaluation.brier = number(from, "brier", 0, kFarthest);
    evaluation.brier_without_model = number(from, "brier_without_model", 0, 1);
    const nlohmann::json& groups = from.at("calibration");
    if (groups.size() > kMostGroups) throw std::out_of_range("more than ten groups of risk");
    for (const nlohmann::json& each : groups) evaluation.calibration.push_back(read_group(each));
    return evaluation;
}

}  // namespace vort
