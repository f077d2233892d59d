#include "plain/clustering.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "common/stop.h"
#include "csm/alternative_clusterings.h"
#include "numeric/distributions.h"
#include "numeric/index_sort.h"

namespace vort::fuzz {

namespace {

constexpr int kOrders = 500;
constexpr int kMostGroups = 10;
constexpr int kMostPasses = 99;

// The cells of a set, numbered from 1; arrays of cells and of groups begin at 1.
struct Cells {
    int count = 0;
    std::vector<int> code{0};  // of each cell
    std::vector<int> at;       // the cell of each place, 0: excluded
};

Cells cells_of(const PlainData& data, const MarkerSet& set) {
    Cells cells;
    for (int i = 0; i < data.individuals(); ++i) {
        const int first = data.codes[set.marker[0]][i];
        const int second = set.size == 1 ? 0 : data.codes[set.marker[1]][i];
        if (first < 0 || second < 0) {
            cells.at.push_back(0);
            continue;
        }
        const int code = set.size == 1 ? first : 3 * first + second;
        const auto known = std::find(cells.code.begin() + 1, cells.code.end(), code);
        cells.at.push_back(static_cast<int>(known - cells.code.begin()));
        if (known == cells.code.end()) cells.code.push_back(code);
    }
    cells.count = static_cast<int>(cells.code.size()) - 1;
    return cells;
}

template <typename T>
using Numbers = std::array<T, kMostGroups + 1>;

// One order of the phenotype over the cells.
struct Tallies {
    Numbers<int> cases{}, controls{};
    Numbers<double> sum{};  // of yy, less its mean over the cells
};

Tallies tallies_of(const Cells& cells, const std::vector<double>& yy) {
    Tallies tallies;
    double total = 0;
    int individuals = 0;
    for (std::size_t i = 0; i < yy.size(); ++i) {
        if (cells.at[i] == 0) continue;
        ++(yy[i] > 0 ? tallies.cases : tallies.controls)[cells.at[i]];
        total += yy[i];
        ++individuals;
    }
    for (std::size_t i = 0; i < yy.size(); ++i) {
        if (cells.at[i] != 0) tallies.sum[cells.at[i]] += yy[i] - total / individuals;
    }
    return tallies;
}

struct Grouping {
    Numbers<int> group{};  // of each cell, from 1
    Numbers<int> cases{}, controls{};
    double statistic = 0;
};

double upper_tail(int freedom, double statistic) {
    return 1 - lower_tail_chi_square(freedom, statistic).value;
}

struct Test {
    double statistic = 0.5;
    double pvalue = 0.5;
};

Test dominant_test(double p1, double p2, double n1, double n2) {
    Test test;
    if (p1 + p2 > 0) {
        test.statistic = (1 / ((1 - p2) / n1 + (1 - p1) / n2) + 1 / (p2 / n1 + p1 / n2)) *
                         ((p1 - p2) * (p1 - p2));
    }
    if (test.statistic > 0) test.pvalue = upper_tail(1, test.statistic);
    return test;
}

Test genotype_test(const Tallies& t, double n1, double n2) {
    Test test{0, 2};
    for (int c = 1; c <= 3; ++c) {
        const double p1 = t.cases[c] / n1;
        const double p2 = t.controls[c] / n2;
        if (p1 + p2 > 0) test.statistic += ((p1 - p2) * (p1 - p2)) / (p2 / n1 + p1 / n2);
    }
    if (test.statistic > 0) test.pvalue = upper_tail(2, test.statistic);
    return test;
}

void group_single_marker(const Tallies& t, double n1, double n2, int g, Numbers<int>& group) {
    const auto& a = t.cases;
    const auto& b = t.controls;
    const Test A = dominant_test(a[3] / n1, b[3] / n2, n1, n2);
    const Test B =
        dominant_test((2 * a[1] + a[2]) / (2 * n1), (2 * b[1] + b[2]) / (2 * n2), 2 * n1, 2 * n2);
    const Test C = dominant_test(a[1] / n1, b[1] / n2, n1, n2);
    const Test tests[] = {A, B, C, genotype_test(t, n1, n2)};
    int best = 0;
    for (int k = 1; k < 4; ++k) {
        if (tests[k].pvalue < tests[best].pvalue) best = k;
    }
    const Numbers<int> first_two{0, 1, 1, 2}, last_two{0, 1, 2, 2}, apart{0, 1, 2, 3};
    const bool three = (best == 1 || best == 3) && g == 3;
    const bool as_A = best == 0 || (best != 2 && A.statistic > C.statistic);
    group = three ? apart : as_A ? first_two : last_two;
}

void group_by_means(const Cells& cells, const Tallies& t, int g, Numbers<int>& group) {
    Numbers<double> mean{}, centre{};
    for (int c = 1; c <= cells.count; ++c) mean[c] = t.sum[c] / (t.cases[c] + t.controls[c]);
    const auto [low, high] = std::minmax_element(mean.begin() + 1, mean.begin() + 1 + cells.count);
    for (int q = 1; q <= g; ++q) centre[q] = *high - (q - 0.5) * (*high - *low) / g;
    for (int c = 1; c <= cells.count; ++c) group[c] = c;
    for (int pass = 0; pass < kMostPasses; ++pass) {
        const Numbers<int> before = group;
        for (int c = 1; c <= cells.count; ++c) {
            group[c] = 1;
            for (int q = 2; q <= g; ++q) {
                if (std::fabs(mean[c] - centre[q]) < std::fabs(mean[c] - centre[group[c]])) {
                    group[c] = q;
                }
            }
        }
        if (group == before) return;
        for (int q = 1; q <= g; ++q) {
            double sum = 0;
            int individuals = 0;
            for (int c = 1; c <= cells.count; ++c) {
                if (group[c] != q) continue;
                sum += t.sum[c];
                individuals += t.cases[c] + t.controls[c];
            }
            centre[q] = individuals > 0 ? sum / individuals : 0;
        }
    }
}

// The other clusterings have no other form.
void group_otherwise(const Cells& cells, const Tallies& t, const PlainData& data, int clustering,
                     int g, Numbers<int>& group) {
    const Numbers<double> no_values{};
    const CellTable table{cells.count, no_values.data(), t.cases.data(), t.controls.data()};
    if (clustering == 2) {
        merge_by_risk_difference(table, data.cases, data.individuals() - data.cases, g,
                                 group.data());
    } else if (clustering == 4) {
        merge_by_average(table, g, group.data());
    } else {
        cluster_by_positive_means(table, g, group.data());
    }
}

double statistic_of(const Grouping& grouping, const PlainData& data, int g) {
    const double n1 = data.cases;
    const double n0 = data.individuals() - data.cases;
    double all_cases = 0;
    for (int q = 1; q <= g; ++q) all_cases += grouping.cases[q];
    double T = 0;
    for (int q = 1; q <= g; ++q) {
        const double a = grouping.cases[q];
        const double b = grouping.controls[q];
        if (data.quantitative) {
            const double deviation = a / (a + b) - all_cases / data.individuals();
            if (a + b > 0) T += deviation * deviation * (a + b) / data.sigma;
        } else if (a / n1 + b / n0 > 0) {
            const double difference = a / n1 - b / n0;
            T += difference * difference / (b / n0 / n1 + a / n1 / n0);
        }
    }
    return T;
}

class Scoring {
  public:
    Scoring(const PlainData& data, const MarkerSet& set, int clustering)
        : data_(data), set_(set), clustering_(clustering), cells_(cells_of(data, set)) {}

    const Cells& cells() const { return cells_; }
    int most_groups() const { return std::min(cells_.count, kMostGroups); }

    Grouping grouping(const Tallies& t, int g) const {
        Grouping out;
        if (set_.size == 1) {
            group_single_marker(t, data_.cases, data_.individuals() - data_.cases, g, out.group);
        } else if (clustering_ == 0) {
            group_by_means(cells_, t, g, out.group);
        } else {
            group_otherwise(cells_, t, data_, clustering_, g, out.group);
        }
        for (int c = 1; c <= cells_.count; ++c) {
            out.cases[out.group[c]] += t.cases[c];
            out.controls[out.group[c]] += t.controls[c];
        }
        out.statistic = statistic_of(out, data_, g);
        return out;
    }

    std::vector<Tallies> draw_orders(testing::PlainGenerator& generator) const {
        std::vector<Tallies> orders;
        for (int r = 0; r < kOrders; ++r) {
            std::vector<double> permuted;
            for (const int i : testing::plain_order(generator, data_.individuals())) {
                permuted.push_back(data_.y[i]);
            }
            orders.push_back(tallies_of(cells_, permuted));
        }
        return orders;
    }

    // The number of groups that gives the observed order its smallest p-value.
    int best_groups(const std::vector<Tallies>& orders) const {
        const Tallies observed = tallies_of(cells_, data_.y);
        int best = 0;
        double smallest = 2;
        for (int g = most_groups(); g >= 2; --g) {
            std::vector<double> statistic{0, grouping(observed, g).statistic};
            for (const Tallies& t : orders) statistic.push_back(grouping(t, g).statistic);
            std::vector<int> order(statistic.size());
            Quickindex(statistic.data(), order.data(), kOrders + 1);
            const auto rank = std::find(order.begin() + 1, order.end(), 1) - order.begin();
            const double pvalue = double(kOrders + 1 - rank) / kOrders;
            if (pvalue >= smallest) continue;
            smallest = pvalue;
            best = g;
        }
        return best;
    }

    // The record of the observed order in g groups.
    ClusterRecord record(int g, int markers, Transcript& text) const {
        const Grouping observed = grouping(tallies_of(cells_, data_.y), g);
        ClusterRecord record(set_.size, g, markers);
        record.combination_index = set_.number;
        for (int c = 1; c <= cells_.count; ++c) {
            record.members[observed.group[c] - 1][c] = true;
            record.genotype_code[c] = static_cast<std::uint32_t>(cells_.code[c]);
        }
        record.nonempty_groups = 0;
        double total = 0;
        for (int q = 1; q <= g && total <= 1.0; ++q) {
            text << "nchoose=" << set_.size << "index=" << set_.number << " ii=" << q << '\n';
            const int size = observed.cases[q] + observed.controls[q];
            if (size == 0) continue;
            record.group_frequency[q - 1] = static_cast<double>(size) / data_.individuals();
            record.group_average[q - 1] = static_cast<double>(observed.cases[q]) / size;
            total += record.group_frequency[q - 1];
            ++record.nonempty_groups;
        }
        return record;
    }

  private:
    const PlainData& data_;
    const MarkerSet& set_;
    int clustering_;
    Cells cells_;
};

void stop_without_cells(int count) {
    const std::string cells = std::to_string(count);
    if (count == 0) {
        stop("find error BestClusterNum<0 or BestClusterNum >Tnum, BestClusterNum=0 Tnum=0\n");
    }
    stop("find error BestClusterNum don't equal case, BestClusterNum=" + cells + " Tnum=" + cells +
         " numcom=0\n");
}

}  // namespace

ClusterRecord plain_clustering(const PlainData& data, const MarkerSet& set, int markers,
                               int clustering, const std::string& announcement,
                               testing::PlainGenerator& generator, Transcript& text) {
    const Scoring scoring(data, set, clustering);
    if (scoring.cells().count < 2) stop_without_cells(scoring.cells().count);
    text << announcement;
    const std::vector<Tallies> orders = scoring.draw_orders(generator);
    std::vector<ClusterRecord> records;
    for (int g = 2; g <= scoring.most_groups(); ++g) {
        records.push_back(scoring.record(g, markers, text));
    }
    return records[scoring.best_groups(orders) - 2];
}

}  // namespace vort::fuzz
