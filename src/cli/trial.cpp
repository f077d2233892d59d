#include "cli/trial.h"

#include <algorithm>

#include "prediction/evaluation.h"
#include "prediction/prediction_file.h"

namespace vort {

namespace {

std::string table_of(const HeldBack& held_back, const RiskModel& model,
                     const Predictions& predictions) {
    Transcript out(true);
    put_predictions(held_back.individuals, held_back.phenotypes, model, predictions, out);
    return std::string(out.text());
}

}  // namespace

Trial try_model(const ModelDescription& run, const nlohmann::json& model_json,
                const HeldBack& held_back) {
    const bool has_model = run.result.has_model;
    const RiskModel model = has_model ? risk_model_of(model_json, "model.json") : RiskModel();
    const std::vector<MarkerMatch> matches = match_markers(model.markers, run.study.markers, true);
    const Predictions unseen = predict(model, matches, held_back.genotypes);
    Trial trial{table_of(held_back, model, unseen), nlohmann::ordered_json::object()};
    nlohmann::ordered_json& out = trial.description;
    const auto cases = std::ranges::count(held_back.phenotypes, short{1});
    out["fraction"] = held_back.fraction;
    out["cases"] = cases;
    out["controls"] = std::ssize(held_back.phenotypes) - cases;
    out["evaluation"] = nullptr;
    out["training"] = nullptr;
    if (!has_model) return trial;
    const Predictions seen = predict(model, matches, run.data.genotypes);
    out["evaluation"] =
        evaluation_json(evaluate(unseen.risk, held_back.phenotypes, model.study_share));
    out["training"] = evaluation_json(evaluate(seen.risk, run.data.phenotypes, model.study_share));
    return trial;
}

}  // namespace vort
