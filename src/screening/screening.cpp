// One screening: test, list, rank.
//
// Every marker is tested on its own under four genetic models; its fifth p-value, the "minimum", is
// the smallest of them and ranks the marker. The console shows, in this order, the markers that
// pass a fixed threshold under each model and under the minimum, the counts of these lists, and
// the ranking of all markers. Nothing of a screening outlives the call but the ranking, and the
// console lines.
//
// Cost: one pass over the genotypes of the data set, then an index sort of `Marker` p-values.
#include "screening/screening.h"

#include <ctime>
#include <iostream>
#include <optional>

#include "common/number_text.h"
#include "screening/fdr_report.h"
#include "screening/genotype_data.h"
#include "screening/globals.h"
#include "screening/marker_pvalues.h"
#include "screening/prepared_file.h"

namespace vort {

namespace {

constexpr int kMinimum = kModels;  // the minimum's place among the model names

// Lists the markers whose p-value is at most the threshold, and returns their number.
int print_significant(int model, const std::vector<double>& pvalue, double threshold) {
    int count = 0;
    for (int k = 1; k <= Marker; ++k) {
        if (!(pvalue[k] <= threshold)) continue;
        std::cout << "model=" << modelname[model] << " i=" << k << " pvalue=" << general(pvalue[k])
                  << '\n';
        ++count;
    }
    return count;
}

void print_lists(const MarkerPvalues& all) {
    int found[kModels];
    for (int model = 0; model < kModels; ++model) {
        found[model] = print_significant(model, all.model[model], kSignificant);
    }
    const int found_minimum = print_significant(kMinimum, all.minimum, kMinimumSignificant);
    for (int model = 0; model < kModels; ++model) {
        std::cout << "model=" << modelname[model] << " # of marker's pvalue<0.002=" << found[model]
                  << '\n';
    }
    std::cout << "model=" << modelname[kMinimum]
              << " # of marker's pvalue<0.002/4=" << found_minimum << '\n';
    for (int model = 0; model < kModels; ++model) {
        std::cout << "model=" << modelname[model]
                  << " # of marker's missing num than 20=" << all.dropped_significant[model]
                  << " total_count_drop_diseasemaker=" << all.dropped << '\n';
    }
}

void print_ranking(const MarkerPvalues& all, const std::vector<int>& order, int* ranking) {
    for (int k = 1; k <= Marker; ++k) {
        ranking[k - 1] = order[k] - 1;
        std::cout << k << " index=" << order[k] << " pvalue=" << general(all.minimum[order[k]])
                  << " ref=" << ranking[k - 1] << '\n';
    }
}

}  // namespace

int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking) {
    load_data_set_once();
    std::optional<FdrReport> report;
    if (orginal_data != 0 && write_FDR_result != 0) report.emplace();

    const std::time_t start = std::time(nullptr);
    const MarkerPvalues all = test_all_markers();
    std::cout << "time of pvalue " << static_cast<long>(std::time(nullptr) - start) << '\n';

    print_lists(all);
    const std::vector<int> order = order_by_pvalue(all.minimum);
    print_ranking(all, order, ranking);

    if (save_pre != 0) save_prepared_file(order);
    if (report) report->write(all, order);
    std::cout.flush();
    return 0;
}

}  // namespace vort
