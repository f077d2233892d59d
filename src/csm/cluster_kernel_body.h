// The body of ClusterKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "csm/cluster_kernel.h"
#include "csm/kmeans_limits.h"
#include "numeric/lanes.h"

namespace vort {

namespace clustering {

// As many lanes as a register has. All arrays begin at 1, as cells and groups do.
template <Instructions kInstructions>
class Lanes {
  public:
    using Types = Register<kInstructions>;
    using Doubles = typename Types::Doubles;
    using Mask = typename Types::Mask;

    Lanes(const PermutedCellSums& cells, int first_lane) : ncell_(cells.ncell) {
        const Doubles control = cells.value[0] - load(cells.mean + first_lane);
        const double step = cells.value[1] - cells.value[0];
        largest_ = Doubles{} - __builtin_inf();
        Doubles smallest = Doubles{} + __builtin_inf();
        for (int c = 1; c <= ncell_; ++c) {
            const double size = cells.size[c];
            size_[c] = size;
            sum_[c] = load(cells.sum + c * kLanes + first_lane);
            mean_[c] = sum_[c] / size;
            cases_[c] = whole_part((sum_[c] - size * control) / step + 0.5);
            largest_ = select(mean_[c] > largest_, mean_[c], largest_);
            smallest = select(mean_[c] < smallest, mean_[c], smallest);
        }
        spread_ = largest_ - smallest;
    }

    void cluster(int g) {
        for (int j = 1; j <= g; ++j) centre_[j] = largest_ - (j - 0.5) * spread_ / double(g);
        for (int c = 1; c <= ncell_; ++c) group_[c] = Doubles{} + double(c);
        Mask going = ~Mask{};
        for (int pass = 0; pass < kMostPasses; ++pass) {
            going &= find_nearest(g);
            if (any_of_lanes(going) == 0) return;
            for (int j = 1; j <= g; ++j) centre_[j] = select(going, centre_of(j), centre_[j]);
        }
    }

    Doubles statistic(int g, double all_cases, double all_controls) const {
        Doubles statistic{};
        for (int q = 1; q <= g; ++q) {
            Doubles cases{};
            Doubles controls{};
            for (int c = 1; c <= ncell_; ++c) {
                const Mask here = group_[c] == double(q);
                cases += select(here, cases_[c], Doubles{});
                controls += select(here, size_[c] - cases_[c], Doubles{});
            }
            const Doubles P1 = cases / all_cases;
            const Doubles P0 = controls / all_controls;
            const Doubles term = ((P1 - P0) * (P1 - P0)) / (P0 / all_cases + P1 / all_controls);
            statistic += select(P1 + P0 > 0.0, term, Doubles{});
        }
        return statistic;
    }

  private:
    static Doubles load(const double* from) {
        Doubles value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    // Each cell to its nearest centre, the lowest of equals; the lanes in which that moved a cell.
    [[gnu::always_inline]] Mask find_nearest(int g) {
        Mask moved{};
        for (int c = 1; c <= ncell_; ++c) {
            Doubles nearest = Doubles{} + 1.0;
            Doubles smallest = magnitude(mean_[c] - centre_[1]);
            for (int j = 2; j <= g; ++j) {
                const Doubles distance = magnitude(mean_[c] - centre_[j]);
                const Mask nearer = distance < smallest;
                nearest = select(nearer, Doubles{} + double(j), nearest);
                smallest = select(nearer, distance, smallest);
            }
            moved |= nearest != group_[c];
            group_[c] = nearest;
        }
        return moved;
    }

    // Zero for an empty group.
    [[gnu::always_inline]] Doubles centre_of(int j) const {
        Doubles sum{};
        Doubles count{};
        for (int c = 1; c <= ncell_; ++c) {
            const Mask here = group_[c] == double(j);
            sum += select(here, sum_[c], Doubles{});
            count += select(here, Doubles{} + size_[c], Doubles{});
        }
        return select(count > 0.0, sum / count, Doubles{});
    }

    int ncell_;
    double size_[kMostCells + 1];
    Doubles sum_[kMostCells + 1];
    Doubles mean_[kMostCells + 1];
    Doubles cases_[kMostCells + 1];
    Doubles largest_;
    Doubles spread_;
    Doubles centre_[kMostCells + 1];
    Doubles group_[kMostCells + 1];
};

}  // namespace clustering

template <Instructions kInstructions>
void ClusterKernel<kInstructions>::statistics(const PermutedCellSums& cells, int gmax,
                                              double* statistic) {
    using Lanes = clustering::Lanes<kInstructions>;
    for (int first = 0; first < kLanes; first += Lanes::Types::kSize) {
        Lanes lanes(cells, first);
        for (int g = 2; g <= gmax; ++g) {
            lanes.cluster(g);
            const auto found = lanes.statistic(g, cells.cases, cells.controls);
            std::memcpy(statistic + (g - 2) * kLanes + first, &found, sizeof found);
        }
    }
}

}  // namespace vort
