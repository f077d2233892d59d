// The statistics of one marker set under all orders of the phenotype.
#pragma once

#include <algorithm>
#include <vector>

#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"

namespace vort {

constexpr int kOrders = 500;  // random orders of the phenotype

// A value for each order 0 .. kOrders (0 is the observed one) and each g = 2 .. gmax.
class ScoreTable {
  public:
    explicit ScoreTable(int gmax) : columns_(std::max(gmax + 1, 0)), gmax_(gmax) {
        for (auto& column : columns_) column.resize(kOrders + 1);
    }

    double& at(int r, int g) { return columns_[g][r]; }

    // Statistics become empirical p-values: (kOrders - t + 1) / kOrders for the t-th smallest.
    void turn_into_pvalues() {
        for (int g = 2; g <= gmax_; ++g) {
            const std::vector<int> order = order_of(columns_[g]);
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

    int gmax() const { return gmax_; }

  private:
    // Row numbers plus 1 by ascending statistic, elements 1 .. kOrders + 1. The faster sort takes
    // no NaN, which the statistics of one group alone are.
    static std::vector<int> order_of(const std::vector<double>& statistic) {
        std::vector<int> order{0};
        if (std::any_of(statistic.begin(), statistic.end(), [](double s) { return s != s; })) {
            std::vector<double> from_one{0};
            from_one.insert(from_one.end(), statistic.begin(), statistic.end());
            order.resize(from_one.size());
            Quickindex(from_one.data(), order.data(), kOrders + 1);
            return order;
        }
        std::vector<KeyedIndex> items;
        items.reserve(statistic.size());
        for (const double s : statistic) items.push_back({s, static_cast<int>(items.size()) + 1});
        sort_keyed(items);
        for (const KeyedIndex& item : items) order.push_back(item.index);
        return order;
    }

    std::vector<std::vector<double>> columns_;
    int gmax_;
};

}  // namespace vort
