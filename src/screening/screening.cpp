// Screenings: test, list, rank.
//
// Every marker is tested on its own under four genetic models; its fifth p-value, the "minimum", is
// the smallest of them and ranks the marker. The console shows, in this order, the markers that
// pass a fixed threshold under each model and under the minimum, the counts of these lists, and
// the ranking of all markers. Nothing of a screening outlives the call but the ranking, and the
// console lines.
//
// The data sets of a run are counted together (counted_data_sets.h) and tested one by one
// (minimum_screening.h). Cost, for a marker and data set: three bits for each individual, one
// p-value, a share of the sort, a line on the console.
#include "screening/screening.h"

#include <algorithm>
#include <ctime>
#include <iostream>
#include <optional>

#include "common/line_writer.h"
#include "common/number_text.h"
#include "screening/counted_data_sets.h"
#include "screening/fdr_report.h"
#include "screening/genotype_data.h"
#include "screening/globals.h"
#include "screening/marker_pvalues.h"
#include "screening/minimum_screening.h"
#include "screening/prepared_file.h"

namespace vort {

namespace {

constexpr int kMinimum = kModels;  // the minimum's place among the model names

void print_findings(int model, const std::vector<Finding>& findings) {
    for (const auto& [marker, pvalue] : findings) {
        std::cout << "model=" << modelname[model] << " i=" << marker
                  << " pvalue=" << general(pvalue) << '\n';
    }
}

void print_lists(const ScreeningResult& result) {
    for (int model = 0; model < kModels; ++model) print_findings(model, result.significant[model]);
    print_findings(kMinimum, result.minimum_significant);
    for (int model = 0; model < kModels; ++model) {
        std::cout << "model=" << modelname[model]
                  << " # of marker's pvalue<0.002=" << result.significant[model].size() << '\n';
    }
    std::cout << "model=" << modelname[kMinimum]
              << " # of marker's pvalue<0.002/4=" << result.minimum_significant.size() << '\n';
    for (int model = 0; model < kModels; ++model) {
        std::cout << "model=" << modelname[model]
                  << " # of marker's missing num than 20=" << result.dropped_significant[model]
                  << " total_count_drop_diseasemaker=" << result.dropped << '\n';
    }
}

void print_ranking(const std::vector<KeyedIndex>& ranked) {
    LineWriter out(std::cout);
    DecimalDigits k(0);
    for (const auto& [pvalue, marker] : ranked) {
        const DecimalDigits ref(marker - 1);
        k = k.next();
        out.end(out.begin()
                    .integer(k)
                    .text(" index=")
                    .integer(ref.next())
                    .text(" pvalue=")
                    .general(pvalue)
                    .text(" ref=")
                    .integer(ref));
    }
}

// Prints what there is to say and stores the ranking; leaves result.minimum sorted.
void show(ScreeningResult& result, std::time_t start, int* ranking) {
    std::cout << "time of pvalue " << static_cast<long>(std::time(nullptr) - start) << '\n';
    print_lists(result);
    sort_keyed(result.minimum);
    for (std::size_t k = 0; k < result.minimum.size(); ++k) {
        ranking[k] = result.minimum[k].index - 1;
    }
    print_ranking(result.minimum);
    std::cout.flush();
}

std::vector<int> order_of(const ScreeningResult& ranked) {
    std::vector<int> order{0};
    for (const KeyedIndex& item : ranked.minimum) order.push_back(item.index);
    return order;
}

bool reports_wanted() {
    return write_FDR_result != 0 || save_pre != 0;
}

}  // namespace

int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking) {
    load_data_set_once();
    std::optional<FdrReport> report;
    if (orginal_data != 0 && write_FDR_result != 0) report.emplace();

    const std::time_t start = std::time(nullptr);
    const MarkerPvalues all = test_all_markers();
    ScreeningResult result = result_of(all);
    show(result, start, ranking);

    const std::vector<int> order = order_of(result);
    if (save_pre != 0) save_prepared_file(order);
    if (report) report->write(all, order);
    return 0;
}

struct DataSetScreening::Counts {
    Counts(std::span<short* const> phenotypes, std::span<int* const> rankings, GroupSizes sizes)
        : instructions(best_instructions()),
          counted(X, Sample, Marker, phenotypes, rankings, instructions),
          screening(counted, Marker, sizes, missing_limits(), instructions) {}

    Instructions instructions;
    CountedDataSets counted;
    MinimumScreening screening;
};

DataSetScreening::DataSetScreening(std::span<short* const> phenotypes,
                                   std::span<int* const> rankings)
    : phenotypes_(phenotypes), rankings_(rankings) {
    const GroupSizes sizes{samplesize[1], samplesize[0]};
    if (reports_wanted() || !MinimumScreening::fits(sizes)) return;
    counts_ = std::make_unique<Counts>(phenotypes, rankings, sizes);
    if (!counts_->counted.ready()) counts_.reset();
}

DataSetScreening::~DataSetScreening() = default;

void DataSetScreening::screen(int d) {
    std::copy_n(phenotypes_[d], Sample, Y);
    if (counts_ == nullptr) {
        single_marker_test_five_model_drop_missing_diseasemarker1(rankings_[d]);
        return;
    }
    const std::time_t start = std::time(nullptr);
    show(counts_->screening.screen(rankings_[d]), start, rankings_[d]);
}

}  // namespace vort
