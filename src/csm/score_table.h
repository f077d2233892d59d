// The statistics of one marker set under all orders of the phenotype.
#pragma once

#include <algorithm>
#include <vector>

#include "numeric/index_sort.h"

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

    int gmax() const { return gmax_; }

  private:
    std::vector<std::vector<double>> columns_;
    int gmax_;
};

}  // namespace vort
