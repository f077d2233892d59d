#include "cli/summary.h"

#include <algorithm>
#include <cmath>

#include "cli/summary_line.h"
#include "report/model_view.h"
#include "report/wording.h"

namespace vort {

namespace {

constexpr std::size_t kBestShown = 3;
constexpr std::size_t kLearnersShown = 3;

std::string left_out_text(const ModelView& model) {
    const long individuals = model.individuals_read - model.individuals;
    const long markers = model.markers_read - model.markers;
    std::string text = counted(individuals, "individuals") + " and " + counted(markers, "markers");
    if (individuals == 0 && markers == 0) text = "nothing";
    if (model.dropped > 0) {
        text +=
            "; " + counted(model.dropped, "markers") + " not tested, too many genotypes missing";
    }
    return text;
}

std::string best_markers(const ModelDescription& run) {
    std::string out;
    const auto& ranking = run.record.ranking;
    for (std::size_t k = 0; k < std::min(ranking.size(), kBestShown); ++k) {
        const MarkerRow row = run.rows.row(ranking[k]);
        if (!(row.p_min >= 0)) break;
        std::string text = std::string(row.name) + ", chromosome " +
                           chromosome_name(row.chromosome) + ": p = " + p_text(row.p_min);
        if (row.emp2 >= 0) text += ", EMP2 = " + p_text(row.emp2);
        out += summary_line(k == 0 ? "Best markers" : "", text);
    }
    return out.empty() ? summary_line("Best markers", "none could be tested") : out;
}

std::string model_lines(const ModelView& model) {
    if (!model.has_model)
        return summary_line("Model", "none: nothing was kept, or nothing selected");
    std::vector<const Learner*> strongest;
    for (const Learner& learner : model.learners) strongest.push_back(&learner);
    std::ranges::stable_sort(strongest, [](const Learner* a, const Learner* b) {
        return std::abs(a->coefficient) > std::abs(b->coefficient);
    });
    std::string out =
        summary_line("Model", counted(std::ssize(model.learners), "base learners") + " on " +
                                  counted(std::ssize(model.weighed), "markers") +
                                  ", T = " + decimal(model.T0, 3));
    for (std::size_t b = 0; b < std::min(strongest.size(), kLearnersShown); ++b) {
        const Learner& learner = *strongest[b];
        std::string names = learner.markers.front().name;
        if (learner.markers.size() > 1) names += " x " + learner.markers.back().name;
        out += summary_line("", names + ": " + rule_text(learner.markers, learner.cells) +
                                    ", risk " + (learner.risk_difference < 0 ? "" : "+") +
                                    decimal(100 * learner.risk_difference, 0) + " points");
    }
    const std::size_t others = strongest.size() - std::min(strongest.size(), kLearnersShown);
    if (others > 0) out += summary_line("", "and " + counted(static_cast<long>(others), "others"));
    return out;
}

std::string significance(const ModelView& model) {
    if (!model.permuted()) return summary_line("Overall p", "not available without permutations");
    if (!model.has_model) return summary_line("Overall p", "1, since there is no model");
    const std::string all = grouped(model.permutations);
    const bool none = model.stronger == 0;
    const std::string p = none ? "below 1 in " + all : p_text(model.p);
    const std::string low = none ? "up to " : p_text(model.p_low) + " to ";
    return summary_line("Overall p", p + " (95 % interval " + low + p_text(model.p_high) + "): " +
                                         (none ? "none" : grouped(model.stronger)) + " of " + all +
                                         " permuted data sets gave a stronger model");
}

std::string holdout_line(const ModelView& model) {
    if (!model.holdout) return {};
    const HoldoutView& held = *model.holdout;
    std::string text = counted(held.cases + held.controls, "individuals");
    if (!held.unseen) return summary_line("Held back", text + ", and no model to try on them");
    text += ": AUC " + auc_text(held.unseen->roc);
    if (held.training) text += ", and " + decimal(held.training->roc.area, 3) + " on the others";
    return summary_line("Held back", text);
}

}  // namespace

std::string summary_text(const ModelDescription& run, const nlohmann::json& json,
                         const std::string& folder, double seconds) {
    const ModelView model = read_model_view(json);
    return summary_line("Study", counted(model.individuals, "individuals") + " (" +
                                     counted(model.cases, "cases") + ", " +
                                     counted(model.controls, "controls") + "), " +
                                     counted(model.markers, "markers")) +
           summary_line("Left out", left_out_text(model)) + best_markers(run) + model_lines(model) +
           significance(model) + holdout_line(model) +
           summary_line("Report", folder + "/report.html") +
           summary_line("Tables", "markers, permutations, quantiles and model.json beside it") +
           summary_line("Time", seconds_text(seconds));
}

}  // namespace vort
