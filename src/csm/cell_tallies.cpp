#include "csm/cell_tallies.h"

#include "csm/alternative_clusterings.h"
#include "csm/cell_clustering.h"
#include "csm/one_marker_clustering.h"

namespace vort {

namespace {

void cluster_by_means(const CellTallies& cells, int g, int* group_of_cell) {
    ClusteredCells<double> placed;
    placed.ncell = cells.ncell;
    for (int c = 1; c <= cells.ncell; ++c) {
        placed.size[c] = cells.cases[c] + cells.controls[c];
        placed.sum[c] = cells.sum[c];
        placed.cases[c] = cells.cases[c];
    }
    CellClustering<double> clusters(placed);
    clusters.cluster(g);
    for (int c = 1; c <= cells.ncell; ++c) {
        group_of_cell[c] = static_cast<int>(clusters.group(c));
    }
}

// The alternatives are given no values of the cells: those are 0.
void cluster_pair(const CellTallies& cells, const GroupingRules& rules, int g, int* group_of_cell) {
    const CellArray<double> no_values{};
    const CellTable table{cells.ncell, no_values.data(), cells.cases.data(), cells.controls.data()};
    switch (rules.clustering) {
        case 1:
        case 3:
            return cluster_by_positive_means(table, g, group_of_cell);
        case 2:
            return merge_by_risk_difference(table, rules.cases, rules.controls(), g, group_of_cell);
        case 4:
            return merge_by_average(table, g, group_of_cell);
        default:
            return cluster_by_means(cells, g, group_of_cell);
    }
}

}  // namespace

CellTallies tally_cells(const SetCells& cells, std::span<const double> phenotype) {
    CellTallies tallies;
    tallies.ncell = cells.ncell;
    double total = 0;
    int individuals = 0;
    for (std::size_t i = 0; i < phenotype.size(); ++i) {
        const int cell = cells.cell[i];
        if (cell == 0) continue;
        ++(phenotype[i] > 0 ? tallies.cases : tallies.controls)[cell];
        total += phenotype[i];
        ++individuals;
    }
    const double mean = total / individuals;
    for (std::size_t i = 0; i < phenotype.size(); ++i) {
        if (cells.cell[i] != 0) tallies.sum[cells.cell[i]] += phenotype[i] - mean;
    }
    return tallies;
}

Grouping group_cells(const CellTallies& cells, const GroupingRules& rules, int g) {
    Grouping grouping;
    int* const group = grouping.group_of_cell.data();
    if (rules.set_size == 1) {
        const OneMarkerTests tests = test_one_marker(cells.cases.data(), cells.controls.data(),
                                                     rules.cases, rules.controls());
        group_one_marker(tests, g, group);
    } else {
        cluster_pair(cells, rules, g, group);
    }
    for (int c = 1; c <= cells.ncell; ++c) {
        grouping.cases[group[c]] += cells.cases[c];
        grouping.controls[group[c]] += cells.controls[c];
    }
    grouping.statistic = group_statistic(grouping.cases, grouping.controls, rules, g);
    return grouping;
}

double group_statistic(const CellArray<int>& cases, const CellArray<int>& controls,
                       const GroupingRules& rules, int g) {
    double statistic = 0;
    if (!rules.quantitative) {
        for (int q = 1; q <= g; ++q) {
            statistic += group_term<double>(cases[q], controls[q], rules.cases, rules.controls());
        }
        return statistic;
    }
    // The shares of individuals above the mean, for a quantitative trait.
    double total = 0;
    for (int q = 1; q <= g; ++q) total += cases[q];
    const double ybar = total / rules.individuals;
    for (int q = 1; q <= g; ++q) {
        const int size = cases[q] + controls[q];
        if (size == 0) continue;
        const double deviation = static_cast<double>(cases[q]) / size - ybar;
        statistic += (deviation * deviation) * size / rules.sigma;
    }
    return statistic;
}

}  // namespace vort
