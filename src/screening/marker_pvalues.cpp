#include "screening/marker_pvalues.h"

#include <algorithm>

#include "screening/five_model_test.h"
#include "screening/stretch_screening.h"

namespace vort {

namespace {

void drop_marker(MarkerPvalues& all, std::array<double, kModels>& pvalue) {
    ++all.dropped;
    for (int model = 0; model < kModels; ++model) {
        if (pvalue[model] <= kSignificant) ++all.dropped_significant[model];
        pvalue[model] = 1.0;
    }
}

// Ties stay with the earlier model.
void store_minimum(MarkerPvalues& all, std::size_t k) {
    all.minimum[k] = all.model[0][k];
    for (int model = 1; model < kModels; ++model) {
        if (all.model[model][k] < all.minimum[k]) {
            all.minimum[k] = all.model[model][k];
            all.minimum_model[k] = static_cast<signed char>(model);
        }
    }
}

}  // namespace

MarkerPvalues test_all_markers(const Genotypes& genotypes, std::span<const short> phenotypes) {
    const auto markers = static_cast<std::size_t>(genotypes.markers());
    const int cases = static_cast<int>(std::count(phenotypes.begin(), phenotypes.end(), 1));
    const int controls = static_cast<int>(phenotypes.size()) - cases;
    const MissingLimits limit = missing_limits({cases, controls});
    MarkerPvalues all;
    for (auto& pvalues : all.model) pvalues.resize(markers + 1);
    all.minimum.resize(markers + 1);
    all.minimum_model.resize(markers + 1);
    std::vector<signed char> codes(phenotypes.size());
    for (std::size_t j = 0; j < markers; ++j) {
        genotypes.unpack(static_cast<int>(j), codes.data());
        const MarkerCounts counts = count_genotypes(codes, phenotypes);
        auto pvalue = five_model_pvalues(counts, cases, controls);
        if (counts.cases.count[3] > limit.cases || counts.controls.count[3] > limit.controls) {
            drop_marker(all, pvalue);
        }
        for (int model = 0; model < kModels; ++model) all.model[model][j + 1] = pvalue[model];
        store_minimum(all, j + 1);
    }
    return all;
}

}  // namespace vort
