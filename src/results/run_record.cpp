#include "results/run_record.h"

namespace vort {

RunRecorder::RunRecorder(int data_sets, int markers) {
    record_.data_sets.resize(static_cast<std::size_t>(data_sets));
    record_.quantiles = PvalueQuantiles(markers);
}

void RunRecorder::screened(const ScreenedView& view) {
    RunRecord::DataSet& data_set = record_.data_sets[view.data_set];
    data_set.smallest_p = view.smallest_pvalue;
    data_set.best = view.best;
    if (view.data_set == 0) {
        record_.observed.assign(view.pvalues.begin(), view.pvalues.end());
        record_.ranking.assign(view.ranking.begin(), view.ranking.end());
        record_.no_weaker.resize(view.pvalues.size());
        record_.quantiles.set_observed(view.pvalues, view.ranking);
        return;
    }
    record_.quantiles.add_permuted(view.pvalues);
    const double* const observed = record_.observed.data();
    std::uint32_t* const no_weaker = record_.no_weaker.data();
    for (std::size_t j = 0; j < view.pvalues.size(); ++j) {
        no_weaker[j] += view.pvalues[j] <= observed[j] ? 1U : 0U;
    }
}

void RunRecorder::take_best(std::span<const int> best) {
    if (record_.ranking.empty()) record_.ranking.assign(best.begin(), best.end());
}

void RunRecorder::modelled(const ModelledView& view) {
    record_.data_sets[view.data_set].statistic = view.statistic;
    record_.data_sets[view.data_set].learners = view.learners;
}

}  // namespace vort
