// Quick tests, search and scores; what they do is told in csm/builder.h and csm/set_score.cpp.
#include <algorithm>
#include <array>
#include <iostream>
#include <vector>

#include "csm/builder.h"
#include "csm/cell_tallies.h"
#include "csm/permuted_statistics.h"
#include "csm/quick_pvalue.h"
#include "csm/set_score.h"
#include "legacy/csm.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"
#include "legacy/random.h"
#include "legacy/scalars.h"
#include "numeric/combinations.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

constexpr int kMostGroups = 10;

// The statistics of one grouping, observed first, elements 1 .. kOrders + 1.
std::vector<double> all_statistics(const CellTallies& observed, const GroupingRules& rules,
                                   PermutedStatistics& permuted, int g) {
    std::vector<double> statistic{0, group_cells(observed, rules, g).statistic};
    for (int first = 0; first < kOrders; first += kLanes) {
        std::array<double, kLanes> found;
        permuted.compute(g, first, found.data());
        const int size = std::min(kLanes, kOrders - first);
        statistic.insert(statistic.end(), found.begin(), found.begin() + size);
    }
    return statistic;
}

// One minus the share of orders whose smallest empirical p-value over all g lies below the observed
// one's. The t-th smallest of the statistics under one g has the p-value (kOrders - t + 1) /
// kOrders.
double score_of(const BuilderData& data, const SetCells& cells, const GroupingRules& rules,
                const Generator& start) {
    const auto permuted = permuted_statistics(data, cells, rules, start);
    const CellTallies observed = tally_cells(cells, data.phenotype());
    std::vector<double> smallest(kOrders + 2, 1.0);
    std::vector<int> order(smallest.size());
    for (int g = 2; g <= std::min(cells.ncell, kMostGroups); ++g) {
        std::vector<double> statistic = all_statistics(observed, rules, *permuted, g);
        Quickindex(statistic.data(), order.data(), kOrders + 1);
        for (int t = 1; t <= kOrders + 1; ++t) {
            double& pvalue = smallest[order[t]];
            pvalue = std::min(pvalue, static_cast<double>(kOrders - t + 1) / kOrders);
        }
    }
    const auto below = std::count_if(smallest.begin() + 1, smallest.end(),
                                     [&](double pvalue) { return pvalue < smallest[1]; });
    return 1 - static_cast<double>(below) / kOrders;
}

}  // namespace

bool CSM::is_imputed(int i, int j) const {
    return missing_set[i]->GetAt(static_cast<unsigned long>(j)) != 0;
}

BuilderData CSM::packed_data(bool filled_in) const {
    const int n = std::max(Sample_size, 0);
    const int m = usable_markers();
    MarkerPlanes planes(n, m);
    std::vector<signed char> codes(static_cast<std::size_t>(n));
    for (int j = 1; j <= m; ++j) {
        for (int i = 1; i <= n; ++i) {
            const bool missing = !filled_in && is_imputed(i, j);
            codes[i - 1] = static_cast<signed char>(missing ? -1 : Tgen[i][j]);
        }
        planes.set(j - 1, codes);
    }
    std::vector<double> phenotype;
    for (int i = 1; i <= n; ++i) phenotype.push_back(yy[i]);
    return BuilderData(
        {std::move(planes), std::move(phenotype), sigma, case_num, quantitative_trait != 0});
}

void CSM::sortchoose(int c, int m, int k, int* out) const {
    decode_combination(c, m, k, out, [this](int a, int b) { return choose_table[a][b]; });
}

void CSM::sortchoose1(int c, int m, int k, int* out) const {
    vort::sortchoose1(c, m, k, out);
}

double CSM::Test(int k, int c) {
    return test_quantitive(k, c);
}

double CSM::test_quantitive(int k, int c) {
    std::array<int, 4> marker{};
    sortchoose1(c, usable_markers(), k, marker.data());
    std::vector<double> cell_sum(static_cast<std::size_t>(ipower(3, k)));
    std::vector<int> cell_count(cell_sum.size());
    for (int i = 1; i <= Sample_size; ++i) {
        int code = 0;
        bool imputed = false;
        for (int p = 1; p <= k; ++p) {
            code = code * 3 + Tgen[i][marker[p]];
            imputed = imputed || is_imputed(i, marker[p]);
        }
        if (imputed) continue;
        cell_sum[code] += yy[i];
        ++cell_count[code];
    }
    return on_console([&](Transcript& transcript) {
        return quick_pvalue(cell_sum, cell_count, Sample_size, sigma, transcript);
    });
}

int CSM::bestsetper1(BestClusterInformationArray* array) {
    const BuilderData data = packed_data(false);
    KeptSets kept = on_console([&](Transcript&) {
        PairCodeRoom room;
        return search_sets(data, settings(), 1, max_order > 0, room);
    });
    if (max_order < 2) {
        kept.pairs.clear();
        kept.pair_text.clear();
    }
    std::cout << kept.marker_text.text();
    for (int s = 0; s < kept.count(); ++s) {
        if (s == static_cast<int>(kept.markers.size())) std::cout << kept.pair_text.text();
        keep_best(data, kept.set(s, data.markers()), array);
    }
    if (kept.pairs.empty()) std::cout << kept.pair_text.text();
    if (kept.count() == 0) std::cout << "CSM get len=0\n";
    return 0;
}

int CSM::keep_best(const BuilderData& data, const MarkerSet& set,
                   BestClusterInformationArray* array) {
    const bool announce = set.size > 1 && clustermethod_print == 1;
    const ClusterRecord best = on_console([&](Transcript& transcript) {
        return best_clustering(data, settings(), set, default_generator(), announce, transcript);
    });
    if (announce) clustermethod_print = 0;
    Generator generator = default_generator();
    generator.skip(static_cast<std::uint64_t>(score_draws(data.individuals())));
    store_generator(generator);
    auto kept = std::make_unique<BestClusterInformation>(best);
    if (array->AddBestClusterInformation(kept.get()) == 0) static_cast<void>(kept.release());
    return best.groups();
}

double CSM::objectivefunction_quantitive(int k, int c, BestClusterInformationArray* array,
                                         int* best_groups) {
    const BuilderData data = packed_data(false);
    const MarkerSet set = marker_set(k, c, data.markers());
    const Generator start = default_generator();
    const int groups = keep_best(data, set, array);
    if (best_groups != nullptr) *best_groups = groups;
    return score_of(data, form_cells(data.planes(), data.individuals(), set),
                    GroupingRules(data, settings(), k), start);
}

void CSM::save_cluster_information(
    int bestg, const std::vector<std::unique_ptr<BestClusterInformation>>& records, int /*gmax*/,
    int /*k*/, int c, BestClusterInformationArray* array, int ncell) {
    if (bestg < 1 || bestg > ncell) {
        std::cout << "find error BestClusterNum<0 or BestClusterNum >Tnum, BestClusterNum=" << bestg
                  << " Tnum=" << ncell << '\n';
        std::exit(0);
    }
    bool found = false;
    for (const auto& each : records) {
        if (each->group_num != static_cast<std::uint32_t>(bestg)) continue;
        found = true;
        each->combination_index = c;
        auto copy = each->clone(each.get());
        if (array->AddBestClusterInformation(copy.get()) == 0) static_cast<void>(copy.release());
    }
    if (found) return;
    std::cout << "find error BestClusterNum don't equal case, BestClusterNum=" << bestg
              << " Tnum=" << ncell << " numcom=" << records.size() << '\n';
    for (std::size_t i = 0; i < records.size(); ++i) {
        std::cout << "BCI[" << i + 2 << "]->group_num=" << records[i]->group_num << '\n';
    }
    std::exit(0);
}

}  // namespace vort
