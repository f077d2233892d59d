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
#include <vector>

#include "common/end_program.h"
#include "csm/csm.h"
#include "csm/globals.h"
#include "csm/set_cells.h"
#include "numeric/index_sort.h"
#include "numeric/random.h"
#include "numeric/scalars.h"

namespace vort {

namespace {

constexpr int kOrders = 500;  // permutations of the phenotype
constexpr int kMostGroups = 10;

using Records = std::vector<std::unique_ptr<BestClusterInformation>>;

// A value for each order 0 .. kOrders (0 is the observed one) and each g = 2 .. gmax.
class ScoreTable {
  public:
    explicit ScoreTable(int gmax) : columns_(std::max(gmax + 1, 0)), gmax_(gmax) {
        for (auto& column : columns_) column.resize(kOrders + 1);
    }

    double& at(int r, int g) { return columns_[g][r]; }

    // Statistics become empirical p-values: (kOrders - t + 1) / kOrders for the t-th smallest.
    void turn_into_pvalues() {
        std::vector<double> statistic(kOrders + 2);
        std::vector<int> order(kOrders + 2);
        for (int g = 2; g <= gmax_; ++g) {
            std::copy(columns_[g].begin(), columns_[g].end(), statistic.begin() + 1);
            Quickindex(statistic.data(), order.data(), kOrders + 1);
            for (int t = 1; t <= kOrders + 1; ++t) {
                columns_[g][order[t] - 1] = static_cast<double>(kOrders - t + 1) / kOrders;
            }
        }
    }

    // The g of the smallest value of order r; ties go to the largest g.
    int best_groups(int r) {
        int best = gmax_;
        for (int g = gmax_ - 1; g >= 2; --g) {
            if (at(r, g) < at(r, best)) best = g;
        }
        return best;
    }

    double share_below_observed() {
        if (gmax_ < 2) return 0;
        int below = 0;
        for (int r = 0; r <= kOrders; ++r) {
            if (at(r, best_groups(r)) < at(0, best_groups(0))) ++below;
        }
        return static_cast<double>(below) / kOrders;
    }

  private:
    std::vector<std::vector<double>> columns_;
    int gmax_;
};

void check_code(int code, int space_size) {
    if (code >= 0 && code <= space_size) return;
    std::cout << "There are some wrong GenotypeCode=" << code << " space_size=" << space_size
              << '\n';
    end_program();
}

// Cases and controls of each cell or group, elements 1 .. size.
struct Counts {
    explicit Counts(int size)
        : cases(static_cast<std::size_t>(size) + 1), controls(static_cast<std::size_t>(size) + 1) {}
    std::vector<int> cases;
    std::vector<int> controls;
};

// Writes the groups' shares into the record and announces each group.
void describe_groups(BestClusterInformation& record, const Counts& groups, int k, int c, int n) {
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
        int code = 0;
        bool excluded = false;
        for (int p = 1; p <= k; ++p) {
            code = code * 3 + Tgen[i][marker[p]];
            excluded =
                excluded || missing_set[i]->GetAt(static_cast<unsigned long>(marker[p])) != 0;
        }
        check_code(code, space_size);
        cells.code[i] = code;
        if (excluded) continue;
        if (cell_of_code[code] == 0) cell_of_code[code] = ++cells.ncell;
        cells.cell[i] = cell_of_code[code];
    }
    return cells;
}

// Clusters the cells into g groups by the current yy.
void CSM::cluster_cells(int k, const SetCells& cells, int g, std::vector<int>& group_of_cell) {
    const int ncell = cells.ncell;
    Counts counts(std::max(ncell, 3));
    std::vector<int> cell_count(counts.cases.size());
    std::vector<double> cell_value(counts.cases.size());
    double total = 0;
    int individuals = 0;
    for (int i = 1; i <= Sample_size; ++i) {
        const int cell = cells.cell[i];
        if (cell == 0) continue;
        ++(yy[i] > 0 ? counts.cases : counts.controls)[cell];
        ++cell_count[cell];
        total += yy[i];
        ++individuals;
    }
    int* const cases = counts.cases.data();
    int* const controls = counts.controls.data();
    double* const value = cell_value.data();
    int* const group = group_of_cell.data();
    if (k == 1) return OneMarkerCluster(value, cases, controls, group, ncell, g);
    if (clustermethod_print == 1) {
        clustermethod_print = 0;
        std::cout << "clustermethod=" << clustermethod << '\n';
    }
    if (clustermethod == 1) return cluster1(value, cases, controls, group, ncell, g);
    if (clustermethod == 2) return cluster2(value, cases, controls, group, ncell, g);
    if (clustermethod == 3) return cluster3(value, cases, controls, group, ncell, g);
    if (clustermethod == 4) return cluster4(value, cases, controls, group, ncell, g);
    const double mean = total / individuals;
    for (int i = 1; i <= Sample_size; ++i) {
        if (cells.cell[i] != 0) cell_value[cells.cell[i]] += yy[i] - mean;
    }
    cluster(value, cell_count.data(), group, ncell, g);
}

// How well groups 1 .. g separate cases from controls, or, for a quantitative trait, the shares of
// individuals above the mean.
double CSM::group_statistic(const std::vector<int>& cases, const std::vector<int>& controls) const {
    const int g = static_cast<int>(cases.size()) - 1;
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

double CSM::objectivefunction_quantitive(int k, int c, BestClusterInformationArray* array,
                                         int* best_groups) {
    const int n = Sample_size;
    const SetCells cells = form_cells(k, c);
    const int gmax = std::min(cells.ncell, kMostGroups);
    const std::vector<double> saved(yy.data() + 1, yy.data() + n + 1);
    std::vector<int> order(static_cast<std::size_t>(n) + 1);
    std::vector<int> group_of_cell(static_cast<std::size_t>(std::max(cells.ncell, 3)) + 1);
    ScoreTable table(gmax);
    Records records;
    for (int r = 0; r <= kOrders; ++r) {
        if (r > 0) {
            randomsort(n, order.data());
            for (int i = 1; i <= n; ++i) yy[i] = saved[order[i] - 1];
        }
        for (int g = 2; g <= gmax; ++g) {
            cluster_cells(k, cells, g, group_of_cell);
            Counts groups(g);
            for (int i = 1; i <= n; ++i) {
                if (cells.cell[i] == 0) continue;
                ++(yy[i] > 0 ? groups.cases : groups.controls)[group_of_cell[cells.cell[i]]];
            }
            if (r == 0) {
                records.push_back(std::make_unique<BestClusterInformation>(k, g, marker_num));
                for (int i = 1; i <= n; ++i) {
                    if (cells.cell[i] == 0) continue;
                    records.back()->AddMemberInGroup(group_of_cell[cells.cell[i]] - 1,
                                                     cells.cell[i], cells.code[i]);
                }
                describe_groups(*records.back(), groups, k, c, n);
            }
            table.at(r, g) = group_statistic(groups.cases, groups.controls);
        }
    }
    std::copy(saved.begin(), saved.end(), yy.data() + 1);
    table.turn_into_pvalues();
    const int best = table.best_groups(0);
    save_cluster_information(best, records, gmax, k, c, array, cells.ncell);
    if (best_groups != nullptr) *best_groups = best;
    return 1 - table.share_below_observed();
}

void CSM::save_cluster_information(int bestg, const Records& records, int /*gmax*/, int /*k*/,
                                   int c, BestClusterInformationArray* array, int ncell) {
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
