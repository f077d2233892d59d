#include "screening/marker_pvalues.h"

#include "screening/five_model_test.h"
#include "screening/globals.h"

namespace vort {

namespace {

void drop_marker(MarkerPvalues& all, double pvalue[kModels]) {
    ++all.dropped;
    for (int model = 0; model < kModels; ++model) {
        if (pvalue[model] <= kSignificant) ++all.dropped_significant[model];
        pvalue[model] = 1.0;
    }
}

// Ties stay with the earlier model.
void store_minimum(MarkerPvalues& all, int k) {
    all.minimum[k] = all.model[0][k];
    for (int model = 1; model < kModels; ++model) {
        if (all.model[model][k] < all.minimum[k]) {
            all.minimum[k] = all.model[model][k];
            all.minimum_model[k] = static_cast<signed char>(model);
        }
    }
}

std::vector<Finding> findings(const std::vector<double>& pvalue, double largest) {
    std::vector<Finding> found;
    for (int k = 1; k <= Marker; ++k) {
        if (pvalue[k] <= largest) found.push_back({k, pvalue[k]});
    }
    return found;
}

}  // namespace

MissingLimits missing_limits() {
    return {static_cast<int>(samplesize[1] * not_over_missing_marker_drop_ratio),
            static_cast<int>(samplesize[0] * not_over_missing_marker_drop_ratio)};
}

MarkerPvalues test_all_markers() {
    MarkerPvalues all;
    for (auto& pvalues : all.model) pvalues.resize(Marker + 1);
    all.minimum.resize(Marker + 1);
    all.minimum_model.resize(Marker + 1);
    const MissingLimits limit = missing_limits();
    for (int j = 0; j < Marker; ++j) {
        double pvalue[kModels];
        GenotypeCounts in_cases;
        GenotypeCounts in_controls;
        calculate_pvalue4_and_freq(Y, X, Marker, Sample, j, pvalue, in_cases.count,
                                   in_controls.count);
        if (in_cases.count[3] > limit.cases || in_controls.count[3] > limit.controls) {
            drop_marker(all, pvalue);
        }
        for (int model = 0; model < kModels; ++model) all.model[model][j + 1] = pvalue[model];
        store_minimum(all, j + 1);
    }
    return all;
}

ScreeningResult result_of(const MarkerPvalues& all) {
    ScreeningResult result;
    for (int model = 0; model < kModels; ++model) {
        result.significant[model] = findings(all.model[model], kSignificant);
    }
    result.minimum_significant = findings(all.minimum, kMinimumSignificant);
    result.dropped = all.dropped;
    result.dropped_significant = all.dropped_significant;
    for (int k = 1; k <= Marker; ++k) result.minimum.push_back({all.minimum[k], k});
    return result;
}

}  // namespace vort
