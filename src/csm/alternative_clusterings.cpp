#include "csm/alternative_clusterings.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "numeric/index_sort.h"

namespace vort {

namespace {

// The given values, 0 for cells without individuals; element 0 is unused.
std::vector<double> start_values(const CellTable& cells) {
    std::vector<double> start(static_cast<std::size_t>(cells.ncell) + 1);
    for (int c = 1; c <= cells.ncell; ++c) {
        start[c] = cells.case_count[c] + cells.control_count[c] < 1 ? 0 : cells.value[c];
    }
    return start;
}

double mean_of_positive(const CellTable& cells, const int* group_of_cell, int group) {
    double sum = 0;
    int count = 0;
    for (int c = 1; c <= cells.ncell; ++c) {
        if (group_of_cell[c] != group || !(cells.value[c] > 0)) continue;
        sum += cells.value[c];
        ++count;
    }
    return count == 0 ? 0.0 : sum / count;
}

// The centre nearest to a value, 1 .. g; ties go to the lowest.
int nearest_centre(double value, const std::vector<double>& centre, int g) {
    int nearest = 1;
    for (int j = 2; j <= g; ++j) {
        if (std::abs(value - centre[j]) < std::abs(value - centre[nearest])) nearest = j;
    }
    return nearest;
}

constexpr int kMostPasses = 99;

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

void cluster_by_positive_means(const CellTable& cells, int g, int* group_of_cell) {
    const std::vector<double> value = start_values(cells);
    const auto [min, max] = std::minmax_element(value.begin() + 1, value.end());
    const double spread = *max - *min;
    std::vector<double> centre(static_cast<std::size_t>(g) + 1);
    for (int j = 1; j <= g; ++j) centre[j] = *max - (j - 0.5) * spread / g;
    for (int c = 1; c <= cells.ncell; ++c) group_of_cell[c] = c;
    for (int pass = 0; pass < kMostPasses; ++pass) {
        bool changed = false;
        for (int c = 1; c <= cells.ncell; ++c) {
            const int nearest = nearest_centre(value[c], centre, g);
            changed = changed || nearest != group_of_cell[c];
            group_of_cell[c] = nearest;
        }
        if (!changed) return;
        for (int j = 1; j <= g; ++j) centre[j] = mean_of_positive(cells, group_of_cell, j);
    }
}

void merge_by_risk_difference(const CellTable& cells, double cases, double controls, int g,
                              int* group_of_cell) {
    const auto risk_difference = [&](const std::vector<int>& members) {
        int case_count = 0;
        int control_count = 0;
        for (const int c : members) {
            case_count += cells.case_count[c];
            control_count += cells.control_count[c];
        }
        const double a = case_count / cases;
        const double b = control_count / controls;
        if (!(a + b > 0)) return 0.0;
        return (a - b) *
               std::sqrt(1 / ((1 - b) / cases + (1 - a) / controls) +
                         1 / (b / cases + a / controls)) /
               static_cast<double>(members.size());
    };
    const int ncell = cells.ncell;
    Agglomeration merged(start_values(cells));
    while (merged.merge_closest(ncell - 1, ncell - 1, risk_difference) && merged.clusters() > g) {
    }
    merged.number_groups(group_of_cell, g);
}

void merge_by_average(const CellTable& cells, int g, int* group_of_cell) {
    const auto plain_average = [&](const std::vector<int>& members) {
        double sum = 0;
        for (const int c : members) sum += cells.value[c];
        return sum / static_cast<double>(members.size());
    };
    Agglomeration merged(start_values(cells));
    while (merged.clusters() > g &&
           merged.merge_closest(cells.ncell, cells.ncell - 1, plain_average)) {
    }
    merged.number_groups(group_of_cell, g);
}

}  // namespace vort
