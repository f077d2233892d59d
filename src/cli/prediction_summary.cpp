#include "cli/prediction_summary.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/summary_line.h"
#include "cli/version.h"
#include "report/wording.h"
#include "results/account_json.h"

namespace vort {

namespace {

using Json = nlohmann::ordered_json;

long found(std::span<const MarkerMatch> matches) {
    return std::ranges::count_if(matches, [](const MarkerMatch& match) { return match.found(); });
}

std::string people_text(const PredictionDescription& run) {
    const Evaluation& evaluation = run.evaluation;
    const long people = std::ssize(run.study.individuals);
    std::string text = counted(people, "individuals");
    if (evaluation.individuals() == 0) return text + ", none with a phenotype";
    text +=
        " (" + counted(evaluation.cases, "cases") + ", " + counted(evaluation.controls, "controls");
    if (const long without = people - evaluation.individuals(); without > 0) {
        text += ", " + grouped(without) + " without phenotype";
    }
    return text + ")";
}

std::string markers_text(const PredictionDescription& run) {
    const long all = std::ssize(run.matches);
    const long complete = std::ranges::count(run.predictions.genotyped, all);
    return grouped(found(run.matches)) + " of " + grouped(all) + " found; " +
           counted(complete, "individuals") + (complete == 1 ? " has" : " have") +
           " a genotype of every one";
}

std::string risk_text(const Predictions& predictions) {
    const auto [low, high] = std::ranges::minmax(predictions.risk);
    return decimal(low, 3) + " to " + decimal(high, 3);
}

std::string calibration_line(const RiskGroup& group) {
    const std::string risks = decimal(group.lowest, 3) + " to " + decimal(group.highest, 3);
    return "fitted " + risks + ": " + grouped(group.cases) + " of " + grouped(group.individuals) +
           " are cases (" + share_text(group.cases, group.individuals) + "; fitted on average " +
           decimal(100 * group.mean, 0) + "\u00a0%)";
}

std::string evaluation_lines(const Evaluation& evaluation) {
    if (evaluation.individuals() == 0) return {};
    std::string out = summary_line("AUC", auc_text(evaluation.roc)) +
                      summary_line("Brier score", decimal(evaluation.brier, 4) + "; " +
                                                      decimal(evaluation.brier_without_model, 4) +
                                                      " with the same risk for everybody");
    const char* title = "Calibration";
    for (const RiskGroup& group : evaluation.calibration) {
        out += summary_line(title, calibration_line(group));
        title = "";
    }
    return out;
}

Json markers_json(const PredictionDescription& run) {
    Json out = Json::array();
    for (std::size_t k = 0; k < run.matches.size(); ++k) {
        const MarkerInfo& marker = run.model.markers[k];
        out.push_back({{"name", marker.name},
                       {"chromosome", marker.chromosome},
                       {"position", marker.position},
                       {"a1", marker.a1},
                       {"a2", marker.a2},
                       {"match", fit_text(run.matches[k].fit)}});
    }
    return out;
}

Json input_json(const PredictionDescription& run) {
    const long people = std::ssize(run.study.individuals);
    Json out = Json::object();
    out["format"] = name_of(run.format);
    out["files"] = files_json(run.study);
    out["individuals"] = {{"read", run.study.individuals_read},
                          {"predicted", people},
                          {"cases", run.evaluation.cases},
                          {"controls", run.evaluation.controls}};
    out["left_out"] = left_out_json(run.study);
    out["notes"] = run.study.notes;
    return out;
}

}  // namespace

std::string prediction_summary(const PredictionDescription& run) {
    return summary_line("Model", run.model_path + ": " +
                                     counted(std::ssize(run.model.learners), "base learners") +
                                     " on " + counted(std::ssize(run.matches), "markers")) +
           summary_line("Markers", markers_text(run)) +
           summary_line("Individuals", people_text(run)) +
           summary_line("Fitted risk", risk_text(run.predictions)) +
           evaluation_lines(run.evaluation);
}

Json prediction_json(const PredictionDescription& run) {
    Json out = Json::object();
    out["format"] = "vort-prediction";
    out["format_version"] = 1;
    out["program"] = {{"name", "vort"}, {"version", kVersion}};
    out["model"] = {{"path", run.model_path}, {"base_learners", run.model.learners.size()}};
    out["input"] = input_json(run);
    out["markers"] = markers_json(run);
    out["evaluation"] =
        run.evaluation.individuals() > 0 ? evaluation_json(run.evaluation) : Json(nullptr);
    return out;
}

}  // namespace vort
