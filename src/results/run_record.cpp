#include "results/run_record.h"

#include <algorithm>

namespace vort {

void RunRecord::append(const RunRecord& next) {
    data_sets.insert(data_sets.end(), next.data_sets.begin(), next.data_sets.end());
    if (observed.empty()) observed = next.observed;
    if (ranking.empty()) ranking = next.ranking;
    no_weaker.resize(std::max(no_weaker.size(), next.no_weaker.size()));
    for (std::size_t j = 0; j < next.no_weaker.size(); ++j) no_weaker[j] += next.no_weaker[j];
    quantiles.append(next.quantiles);
}

RunRecorder::RunRecorder(int first, int count, int markers, std::span<const double> observed)
    : first_(first), observed_(observed.begin(), observed.end()) {
    record_.data_sets.resize(static_cast<std::size_t>(count));
    record_.quantiles = PvalueQuantiles(markers);
    record_.no_weaker.resize(static_cast<std::size_t>(markers));
}

void RunRecorder::screened(const ScreenedView& view) {
    RunRecord::DataSet& data_set = record_.data_sets[view.data_set - first_];
    data_set.smallest_p = view.smallest_pvalue;
    data_set.best = view.best;
    if (view.data_set == 0) {
        observed_.assign(view.pvalues.begin(), view.pvalues.end());
        record_.observed = observed_;
        record_.ranking.assign(view.ranking.begin(), view.ranking.end());
        record_.quantiles.set_observed(view.pvalues, view.ranking);
        return;
    }
    record_.quantiles.add_permuted(view.pvalues);
    const double* const observed = observed_.data();
    std::uint32_t* const no_weaker = record_.no_weaker.data();
    for (std::size_t j = 0; j < view.pvalues.size(); ++j) {
        no_weaker[j] += view.pvalues[j] <= observed[j] ? 1U : 0U;
    }
}

}  // namespace vort
