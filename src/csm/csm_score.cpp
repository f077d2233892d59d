// The permutation score of one marker set.
//
// How much better do the set's genotype cells, clustered into g = 2 .. 10 groups, separate cases
// from controls than they would by chance? The cells are clustered for the observed phenotype
// and for 500 random orders of it, under every g, and each clustering gets the statistic of its
// groups. The number of groups is itself chosen by looking, so the score must pay for it: for
// every g the 501 statistics are turned into empirical p-values (largest statistic: 0), each order
// takes the smallest of its p-values over g, and the score is one minus the share of orders
// whose smallest lies below the observed one's. The observed clustering with the g that gave
// its smallest p-value is the one that is kept.
//
// Example: a set whose observed statistic is the largest under some g scores 1.
//
// Cost: 501 x (groups tried) clusterings of at most nine cells, each after a pass over all
// individuals.
#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <span>
#include <vector>

#include "common/end_program.h"
#include "csm/cluster_kernel.h"
#include "csm/csm.h"
#include "csm/globals.h"
#include "csm/one_marker_clustering.h"
#include "csm/permuted_cells.h"
#include "csm/score_table.h"
#include "csm/set_cells.h"
#include "numeric/random.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

constexpr int kMostGroups = 10;

void check_code(int code, int space_size) {
    if (code >= 0 && code <= space_size) return;
    std::cout << "There are some wrong GenotypeCode=" << code << " space_size=" << space_size
              << '\n';
    end_program();
}

// Writes the groups' shares into the record and announces each group.
void describe_groups(BestClusterInformation& record, const CSM::Counts& groups, int k, int c,
                     int n) {
    const int g = static_cast<int>(record.group_num);
    int counted = 0;
    double total = 0;
    for (int q = 1; q <= g; ++q) {
        std::cout << "nchoose=" << k << "index=" << c << " ii=" << q << '\n';
        const int size = groups.cases[q] + groups.controls[q];
        if (size > 0) {
            const double frequency = static_cast<double>(size) / n;
            record.WriteGroupFrequency(static_cast<unsigned>(q - 1), frequency,
                                       static_cast<double>(groups.cases[q]) / size);
            total += frequency;
            ++counted;
        }
        if (total > 1.0) break;
    }
    record.group_count_copy = static_cast<std::uint32_t>(std::min(counted, g));
}

}  // namespace

SetCells CSM::form_cells(int k, int c) const {
    const int n = Sample_size;
    const int space_size = ipower(3, k);
    std::array<int, 4> marker{};
    sortchoose(c, usable_markers(), k, marker.data());
    SetCells cells;
    cells.code.resize(static_cast<std::size_t>(n) + 1);
    cells.cell.resize(static_cast<std::size_t>(n) + 1);
    std::vector<int> cell_of_code(static_cast<std::size_t>(space_size) + 1);
    for (int i = 1; i <= n; ++i) {
        const int code = cell_code(i, k, marker.data());
        check_code(code, space_size);
        cells.code[i] = code;
        if (is_excluded(i, k, marker.data())) continue;
        if (cell_of_code[code] == 0) cell_of_code[code] = ++cells.ncell;
        cells.cell[i] = cell_of_code[code];
    }
    return cells;
}

// Counts the cells by the current yy and clusters them into g groups.
void CSM::cluster_cells(int k, const SetCells& cells, int g, int* group_of_cell) {
    const int ncell = cells.ncell;
    CellArray<int> cases{};
    CellArray<int> controls{};
    CellArray<int> cell_count{};
    CellArray<double> value{};
    double total = 0;
    int individuals = 0;
    for (int i = 1; i <= Sample_size; ++i) {
        const int cell = cells.cell[i];
        if (cell == 0) continue;
        ++(yy[i] > 0 ? cases : controls)[cell];
        ++cell_count[cell];
        total += yy[i];
        ++individuals;
    }
    int* const a = cases.data();
    int* const b = controls.data();
    if (k == 1) return OneMarkerCluster(value.data(), a, b, group_of_cell, ncell, g);
    if (clustermethod_print == 1) {
        clustermethod_print = 0;
        std::cout << "clustermethod=" << clustermethod << '\n';
    }
    if (clustermethod == 1) return cluster1(value.data(), a, b, group_of_cell, ncell, g);
    if (clustermethod == 2) return cluster2(value.data(), a, b, group_of_cell, ncell, g);
    if (clustermethod == 3) return cluster3(value.data(), a, b, group_of_cell, ncell, g);
    if (clustermethod == 4) return cluster4(value.data(), a, b, group_of_cell, ncell, g);
    const double mean = total / individuals;
    for (int i = 1; i <= Sample_size; ++i) {
        if (cells.cell[i] != 0) value[cells.cell[i]] += yy[i] - mean;
    }
    cluster(value.data(), cell_count.data(), group_of_cell, ncell, g);
}

// How well groups 1 .. g separate cases from controls, or, for a quantitative trait, the shares of
// individuals above the mean.
double CSM::group_statistic(const int* cases, const int* controls, int g) const {
    double statistic = 0;
    if (quantitative_trait == 0) {
        const double N1 = case_num;
        const double N0 = Sample_size - case_num;
        for (int q = 1; q <= g; ++q) {
            const double P1 = cases[q] / N1;
            const double P0 = controls[q] / N0;
            if (P1 + P0 > 0) statistic += ((P1 - P0) * (P1 - P0)) / (P0 / N1 + P1 / N0);
        }
        return statistic;
    }
    double total = 0;
    for (int q = 1; q <= g; ++q) total += cases[q];
    const double ybar = total / Sample_size;
    for (int q = 1; q <= g; ++q) {
        const int size = cases[q] + controls[q];
        if (size == 0) continue;
        const double deviation = static_cast<double>(cases[q]) / size - ybar;
        statistic += (deviation * deviation) * size / sigma;
    }
    return statistic;
}

// Clusters the cells by the current yy, and counts the groups.
void CSM::group_cells(int k, const SetCells& cells, int g, int* group_of_cell, Counts& groups) {
    cluster_cells(k, cells, g, group_of_cell);
    groups = Counts();
    for (int i = 1; i <= Sample_size; ++i) {
        if (cells.cell[i] == 0) continue;
        ++(yy[i] > 0 ? groups.cases : groups.controls)[group_of_cell[cells.cell[i]]];
    }
}

// The observed order: the records, and row 0 of the table.
CSM::Records CSM::score_observed(int k, int c, const SetCells& cells, ScoreTable& table) {
    Records records;
    CellArray<int> group_of_cell{};
    Counts groups;
    for (int g = 2; g <= table.gmax(); ++g) {
        group_cells(k, cells, g, group_of_cell.data(), groups);
        auto record = std::make_unique<BestClusterInformation>(k, g, marker_num);
        for (int i = 1; i <= Sample_size; ++i) {
            if (cells.cell[i] == 0) continue;
            record->AddMemberInGroup(group_of_cell[cells.cell[i]] - 1, cells.cell[i],
                                     cells.code[i]);
        }
        describe_groups(*record, groups, k, c, Sample_size);
        records.push_back(std::move(record));
        table.at(0, g) = group_statistic(groups.cases.data(), groups.controls.data(), g);
    }
    return records;
}

// Any phenotype and any clustering, an order at a time.
void CSM::score_orders_one_by_one(int k, const SetCells& cells, ScoreTable& table) {
    const int n = Sample_size;
    const std::vector<double> saved(yy.data() + 1, yy.data() + n + 1);
    std::vector<int> order(static_cast<std::size_t>(n) + 1);
    CellArray<int> group_of_cell{};
    Counts groups;
    for (int r = 1; r <= kOrders; ++r) {
        randomsort(n, order.data());
        for (int i = 1; i <= n; ++i) yy[i] = saved[order[i] - 1];
        for (int g = 2; g <= table.gmax(); ++g) {
            group_cells(k, cells, g, group_of_cell.data(), groups);
            table.at(r, g) = group_statistic(groups.cases.data(), groups.controls.data(), g);
        }
    }
    std::copy(saved.begin(), saved.end(), yy.data() + 1);
}

// A case-control phenotype under the clusterings in use, eight orders at a time.
void CSM::score_orders_in_lanes(int k, const SetCells& cells, ScoreTable& table) {
    const std::span<const double> phenotype(yy.data() + 1, static_cast<std::size_t>(Sample_size));
    PermutedCells permuted(cells, phenotype, k > 1);
    for (int r = 1; r <= kOrders; r += kLanes) {
        const int orders = std::min(kLanes, kOrders + 1 - r);
        permuted.draw(orders);
        if (k > 1) {
            score_permuted_set(permuted, orders, r, table);
        } else {
            for (int l = 0; l < orders; ++l) score_permuted_marker(permuted, l, r + l, table);
        }
    }
}

// Orders r, r + 1 and so on.
void CSM::score_permuted_set(const PermutedCells& permuted, int orders, int r,
                             ScoreTable& table) const {
    std::array<double, kMostGroups * kLanes> statistic;
    const auto compute = kernel_for(best_instructions(),
                                    []<Instructions I>() { return ClusterKernel<I>::statistics; });
    compute(permuted.sums(case_num, Sample_size - case_num), table.gmax(), statistic.data());
    for (int g = 2; g <= table.gmax(); ++g) {
        for (int l = 0; l < orders; ++l) table.at(r + l, g) = statistic[(g - 2) * kLanes + l];
    }
}

void CSM::score_permuted_marker(const PermutedCells& permuted, int l, int r,
                                ScoreTable& table) const {
    CellArray<int> cases{};
    CellArray<int> controls{};
    CellArray<int> group{};
    permuted.count_cases(l, cases.data());
    for (int c = 1; c <= permuted.ncell(); ++c) {
        controls[c] = permuted.cell_count()[c] - cases[c];
    }
    const OneMarkerTests tests =
        test_one_marker(cases.data(), controls.data(), case_num, Sample_size - case_num);
    for (int g = 2; g <= table.gmax(); ++g) {
        group_one_marker(tests, g, group.data());
        Counts groups;
        for (int c = 1; c <= permuted.ncell(); ++c) {
            groups.cases[group[c]] += cases[c];
            groups.controls[group[c]] += controls[c];
        }
        table.at(r, g) = group_statistic(groups.cases.data(), groups.controls.data(), g);
    }
}

double CSM::objectivefunction_quantitive(int k, int c, BestClusterInformationArray* array,
                                         int* best_groups) {
    const SetCells cells = form_cells(k, c);
    ScoreTable table(std::min(cells.ncell, kMostGroups));
    const Records records = score_observed(k, c, cells, table);
    const std::span<const double> phenotype(yy.data() + 1, static_cast<std::size_t>(Sample_size));
    const bool clusters_in_use = k == 1 || clustermethod == 0;
    if (quantitative_trait == 0 && clusters_in_use && PermutedCells::serves(phenotype)) {
        score_orders_in_lanes(k, cells, table);
    } else {
        score_orders_one_by_one(k, cells, table);
    }
    table.turn_into_pvalues();
    const int best = table.best_groups(0);
    save_cluster_information(best, records, table.gmax(), k, c, array, cells.ncell);
    if (best_groups != nullptr) *best_groups = best;
    return 1 - table.share_below_observed();
}

void CSM::save_cluster_information(
    int bestg, const std::vector<std::unique_ptr<BestClusterInformation>>& records, int /*gmax*/,
    int /*k*/, int c, BestClusterInformationArray* array, int ncell) {
    if (bestg < 1 || bestg > ncell) {
        std::cout << "find error BestClusterNum<0 or BestClusterNum >Tnum, BestClusterNum=" << bestg
                  << " Tnum=" << ncell << '\n';
        end_program();
    }
    bool found = false;
    for (const auto& record : records) {
        if (record->group_num != static_cast<std::uint32_t>(bestg)) continue;
        found = true;
        record->combination_index = c;
        auto copy = record->clone(record.get());
        if (array->AddBestClusterInformation(copy.get()) == 0) static_cast<void>(copy.release());
    }
    if (found) return;
    std::cout << "find error BestClusterNum don't equal case, BestClusterNum=" << bestg
              << " Tnum=" << ncell << " numcom=" << records.size() << '\n';
    for (std::size_t i = 0; i < records.size(); ++i) {
        std::cout << "BCI[" << i + 2 << "]->group_num=" << records[i]->group_num << '\n';
    }
    end_program();
}

}  // namespace vort
