// How many groups a marker set's genotype cells are put into (docs/method.md, section 5).
//
// The cells are clustered for the observed phenotype and for 500 random orders of it, under every g
// = 2 .. 10. All that matters of a g is how many orders rank above the observed one: those whose
// statistic is larger, and of those that are equal the ones that the sort of all 501 leaves behind
// it. So g is tried from the largest down, and given up as soon as it has as many orders above the
// observed one as the best g so far. A set whose observed statistic is the largest under the
// largest g is decided after one look.
//
// Cost: 500 orders drawn, and 500 x (groups tried) clusterings of at most nine cells.
#include "csm/set_score.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "common/stop.h"
#include "csm/cell_tallies.h"
#include "csm/permuted_statistics.h"
#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"

namespace vort {

namespace {

constexpr int kMostGroups = 10;

struct ObservedGrouping {
    ClusterRecord record;
    double statistic;
};

// Writes the groups' shares into the record and announces each group.
void describe_groups(ClusterRecord& record, const Grouping& grouping, const MarkerSet& set, int n,
                     Transcript& transcript) {
    int counted = 0;
    double total = 0;
    for (int q = 1; q <= record.groups(); ++q) {
        transcript << "nchoose=" << set.size << "index=" << set.number << " ii=" << q << '\n';
        const int size = grouping.cases[q] + grouping.controls[q];
        if (size > 0) {
            const double frequency = static_cast<double>(size) / n;
            record.group_frequency[q - 1] = frequency;
            record.group_average[q - 1] = static_cast<double>(grouping.cases[q]) / size;
            total += frequency;
            ++counted;
        }
        if (total > 1.0) break;
    }
    record.nonempty_groups = std::min(counted, record.groups());
}

// The groupings for g = 2 .. gmax.
std::vector<ObservedGrouping> observed_groupings(const BuilderData& data,
                                                 const GroupingRules& rules, const MarkerSet& set,
                                                 const SetCells& cells, int markers,
                                                 Transcript& transcript) {
    const CellTallies tallies = tally_cells(cells, data.phenotype());
    std::vector<ObservedGrouping> observed;
    for (int g = 2; g <= std::min(cells.ncell, kMostGroups); ++g) {
        const Grouping grouping = group_cells(tallies, rules, g);
        ClusterRecord record(set.size, g, markers);
        record.combination_index = set.number;
        for (int c = 1; c <= cells.ncell; ++c) {
            record.members[grouping.group_of_cell[c] - 1][c] = true;
            record.genotype_code[c] = static_cast<std::uint32_t>(cells.code[c]);
        }
        describe_groups(record, grouping, set, data.individuals(), transcript);
        observed.push_back({std::move(record), grouping.statistic});
    }
    return observed;
}

// Place of the first of some statistics in their index sort, from 1. The faster sort takes no NaN.
int rank_of_first(const std::vector<double>& statistic) {
    const int size = static_cast<int>(statistic.size());
    if (std::any_of(statistic.begin(), statistic.end(), [](double s) { return s != s; })) {
        std::vector<double> from_one{0};
        from_one.insert(from_one.end(), statistic.begin(), statistic.end());
        std::vector<int> order(from_one.size());
        Quickindex(from_one.data(), order.data(), size);
        return static_cast<int>(std::find(order.begin() + 1, order.end(), 1) - order.begin());
    }
    std::vector<KeyedIndex> items;
    items.reserve(statistic.size());
    for (const double s : statistic) items.push_back({s, static_cast<int>(items.size())});
    sort_keyed(items);
    const auto first = std::find_if(items.begin(), items.end(),
                                    [](const KeyedIndex& item) { return item.index == 0; });
    return static_cast<int>(first - items.begin()) + 1;
}

// Orders that rank above the observed one; any number from `enough` on where there are as many.
int orders_above(PermutedStatistics& permuted, int g, double observed, int enough) {
    std::vector<double> statistic{observed};
    int larger = 0;
    bool equal = false;
    for (int first = 0; first < kOrders; first += kLanes) {
        std::array<double, kLanes> found;
        permuted.compute(g, first, found.data());
        for (int l = 0; l < kLanes && first + l < kOrders; ++l) {
            if (found[l] > observed) ++larger;
            equal = equal || !(found[l] > observed || found[l] < observed);
            statistic.push_back(found[l]);
        }
        if (larger >= enough) return larger;
    }
    return equal ? kOrders + 1 - rank_of_first(statistic) : larger;
}

int choose_groups(const std::vector<ObservedGrouping>& observed, PermutedStatistics& permuted) {
    int best = 0;
    int fewest = std::numeric_limits<int>::max();
    for (int g = static_cast<int>(observed.size()) + 1; g >= 2 && fewest > 0; --g) {
        const int above = orders_above(permuted, g, observed[g - 2].statistic, fewest);
        if (above >= fewest) continue;
        best = g;
        fewest = above;
    }
    return best;
}

[[noreturn]] void stop_without_cells(int ncell) {
    if (ncell < 1) {
        stop("find error BestClusterNum<0 or BestClusterNum >Tnum, BestClusterNum=0 Tnum=" +
             std::to_string(ncell) + '\n');
    }
    stop("find error BestClusterNum don't equal case, BestClusterNum=" + std::to_string(ncell) +
         " Tnum=" + std::to_string(ncell) + " numcom=0\n");
}

}  // namespace

ClusterRecord best_clustering(const BuilderData& data, const BuilderSettings& settings,
                              const MarkerSet& set, const Generator& start, bool announce,
                              Transcript& transcript) {
    const SetCells cells = form_cells(data.planes(), data.individuals(), set);
    if (cells.ncell < 2) stop_without_cells(cells.ncell);
    if (announce) transcript << "clustermethod=" << settings.clustering << '\n';
    const GroupingRules rules(data, settings, set.size);
    std::vector<ObservedGrouping> observed =
        observed_groupings(data, rules, set, cells, settings.markers, transcript);
    if (observed.size() == 1) return std::move(observed.front().record);
    const auto permuted = permuted_statistics(data, cells, rules, start);
    return std::move(observed[choose_groups(observed, *permuted) - 2].record);
}

std::int64_t score_draws(int individuals) {
    return std::int64_t{kOrders} * individuals;
}

}  // namespace vort
