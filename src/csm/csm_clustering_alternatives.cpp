// Genotype cells into risk groups: the methods that `clustermethod` can select instead.
//
// cluster1 and cluster3 are k-means on given values instead of cell means; a centre moves to the
// plain average of its positive values. cluster2 and cluster4 are agglomerative: cells are ordered
// by value and the two neighbouring clusters that lie closest are merged until g are left.
#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "csm/csm.h"
#include "csm/kmeans.h"
#include "numeric/index_sort.h"

namespace vort {

namespace {

// The given values, 0 for cells without individuals; element 0 is unused.
std::vector<double> start_values(const double* value, const int* case_count,
                                 const int* control_count, int ncell) {
    std::vector<double> start(static_cast<std::size_t>(ncell) + 1);
    for (int c = 1; c <= ncell; ++c) {
        start[c] = case_count[c] + control_count[c] < 1 ? 0 : value[c];
    }
    return start;
}

double mean_of_positive(const double* value, const int* group_of_cell, int ncell, int group) {
    double sum = 0;
    int count = 0;
    for (int c = 1; c <= ncell; ++c) {
        if (group_of_cell[c] != group || !(value[c] > 0)) continue;
        sum += value[c];
        ++count;
    }
    return count == 0 ? 0.0 : sum / count;
}

// Clusters of cells that are merged pair by pair.
class Agglomeration {
  public:
    explicit Agglomeration(std::vector<double> value)
        : value_(std::move(value)), cluster_(value_.size()), order_(value_.size()) {
        for (int c = 1; c <= ncell(); ++c) cluster_[c] = c;
        clusters_ = ncell();
    }

    int clusters() const { return clusters_; }

    // Merges the closest neighbours. The first pair may reach up to position `last_first`, the
    // others up to position `last`. new_value(members) gives the value of the merged cluster.
    // False where no two clusters are within reach.
    template <typename NewValue>
    bool merge_closest(int last_first, int last, NewValue new_value) {
        Quickindex(value_.data(), order_.data(), ncell());
        std::optional<Pair> best = pair_from(1, last_first);
        if (!best) return false;
        for (int p = 1; p <= ncell(); ++p) {
            const std::optional<Pair> pair = pair_from(p, last);
            if (pair && distance(*pair) < distance(*best)) best = pair;
        }
        const int left = cluster_[best->left];
        const int right = cluster_[best->right];
        std::vector<int> members;
        for (int c = 1; c <= ncell(); ++c) {
            if (cluster_[c] == right) cluster_[c] = left;
            if (cluster_[c] == left) members.push_back(c);
        }
        const double merged = new_value(members);
        for (const int c : members) value_[c] = merged;
        --clusters_;
        return true;
    }

    // Numbers the clusters by their lowest cells; no number is above g.
    void number_groups(int* group_of_cell, int g) const {
        std::vector<int> number(value_.size());
        int handed_out = 0;
        for (int c = 1; c <= ncell(); ++c) {
            int& mine = number[cluster_[c]];
            if (mine == 0) mine = std::min(++handed_out, g);
            group_of_cell[c] = mine;
        }
    }

  private:
    struct Pair {
        int left;
        int right;
    };

    int ncell() const { return static_cast<int>(value_.size()) - 1; }
    double distance(const Pair& pair) const {
        return std::abs(value_[pair.left] - value_[pair.right]);
    }

    // The cell at position p and the next one of another cluster, at most at position `last`.
    std::optional<Pair> pair_from(int p, int last) const {
        for (int q = p + 1; q <= last; ++q) {
            if (cluster_[order_[q]] != cluster_[order_[p]]) return Pair{order_[p], order_[q]};
        }
        return std::nullopt;
    }

    std::vector<double> value_;
    std::vector<int> cluster_;
    std::vector<int> order_;  // cells by value
    int clusters_ = 0;
};

}  // namespace

void CSM::cluster1(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    const std::vector<double> start = start_values(value, case_count, control_count, ncell);
    kmeans_on_a_line(start.data(), ncell, group_of_cell, g, [&](double* centre) {
        for (int j = 1; j <= g; ++j) centre[j] = mean_of_positive(value, group_of_cell, ncell, j);
    });
}

// The sign codes that this method once started from are overwritten by the first assignment.
void CSM::cluster3(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    cluster1(value, case_count, control_count, group_of_cell, ncell, g);
}

void CSM::cluster2(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    const double n1 = case_num;
    const double n2 = Sample_size - case_num;
    const auto risk_difference = [&](const std::vector<int>& members) {
        int cases = 0;
        int controls = 0;
        for (const int c : members) {
            cases += case_count[c];
            controls += control_count[c];
        }
        const double a = cases / n1;
        const double b = controls / n2;
        if (!(a + b > 0)) return 0.0;
        return (a - b) * std::sqrt(1 / ((1 - b) / n1 + (1 - a) / n2) + 1 / (b / n1 + a / n2)) /
               static_cast<double>(members.size());
    };
    Agglomeration cells(start_values(value, case_count, control_count, ncell));
    while (cells.merge_closest(ncell - 1, ncell - 1, risk_difference) && cells.clusters() > g) {
    }
    cells.number_groups(group_of_cell, g);
}

void CSM::cluster4(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    const auto plain_average = [&](const std::vector<int>& members) {
        double sum = 0;
        for (const int c : members) sum += value[c];
        return sum / static_cast<double>(members.size());
    };
    Agglomeration cells(start_values(value, case_count, control_count, ncell));
    while (cells.clusters() > g && cells.merge_closest(ncell, ncell - 1, plain_average)) {
    }
    cells.number_groups(group_of_cell, g);
}

}  // namespace vort
