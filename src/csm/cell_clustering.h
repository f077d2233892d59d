// Genotype cells of a pair into risk groups: k-means on a line (docs/method.md, section 5).
//
// A cell's place on the line is its mean of the centred phenotype. With means 0.5, 0.4 and -0.3 and
// two groups the centres start at 0.3 and -0.1 and end at the mean of the first two cells'
// individuals and at -0.3. The centre of an empty group is 0. At most 99 passes over at most nine
// cells.
//
// Number is a double, which is the plain form, or a vector of them: then each lane clusters the
// same cells under an order of the phenotype of its own. What one order would choose by a branch,
// the nearest centre or the group to add a cell to, is here a selection; adding zero where a cell
// is in another group changes no sum, for a sum that began with zero is never minus zero. An order
// whose clustering has settled keeps its centres while the others go on.
//
// The sums of the cells may be off by rounding, as those formed from counts are. Which groups come
// out depends on nothing but comparisons of distances, so where no two distances that were compared
// are within `tolerance` the groups are those of the exact sums. unsure() tells the lanes in which
// some were. The statistic is formed from the counts in the groups, and is exact.
#pragma once

#include "csm/set_cells.h"
#include "numeric/lanes.h"

namespace vort {

constexpr int kMostPasses = 99;

// Cells 1 .. ncell; arrays begin at 1.
template <typename Number>
struct ClusteredCells {
    int ncell = 0;
    double size[kMostCells + 1];   // individuals
    Number sum[kMostCells + 1];    // of their phenotype, from its mean
    Number cases[kMostCells + 1];  // among them
};

// What a group of cases and controls adds to the statistic of a grouping.
template <typename Number>
[[gnu::always_inline]] inline Number group_term(const Number& cases, const Number& controls,
                                                double all_cases, double all_controls) {
    const Number P1 = cases / all_cases;
    const Number P0 = controls / all_controls;
    const Number term = ((P1 - P0) * (P1 - P0)) / (P0 / all_cases + P1 / all_controls);
    return select(P1 + P0 > 0.0, term, Number{});
}

template <typename Number>
class CellClustering {
  public:
    using Mask = decltype(Number{} < Number{});

    explicit CellClustering(const ClusteredCells<Number>& cells, double tolerance = -1)
        : cells_(cells), tolerance_(Number{} + tolerance) {
        largest_ = Number{} - __builtin_inf();
        Number smallest = Number{} + __builtin_inf();
        for (int c = 1; c <= cells.ncell; ++c) {
            mean_[c] = cells.sum[c] / cells.size[c];
            largest_ = select(mean_[c] > largest_, mean_[c], largest_);
            smallest = select(mean_[c] < smallest, mean_[c], smallest);
        }
        spread_ = largest_ - smallest;
    }

    // Into groups 1 .. g.
    [[gnu::always_inline]] void cluster(int g) {
        for (int j = 1; j <= g; ++j) {
            centre_[j] = largest_ - (j - 0.5) * spread_ / double(g);
            empty_[j] = Mask{};
        }
        // A group of its own for each cell, so that the first pass changes something where there
        // are more cells than groups.
        for (int c = 1; c <= cells_.ncell; ++c) group_[c] = Number{} + double(c);
        unsure_ = Mask{};
        Mask going = Number{} == Number{};
        for (int pass = 0; pass < kMostPasses; ++pass) {
            going = both(going, find_nearest(g, going));
            if (!any(going)) return;
            for (int j = 1; j <= g; ++j) move_centre(j, going);
        }
    }

    // Group of a cell, a whole number.
    const Number& group(int cell) const { return group_[cell]; }
    const Mask& unsure() const { return unsure_; }

    // How well the groups separate cases from controls: Pearson's statistic of groups by phenotype.
    // all_cases and all_controls count those in no cell, too.
    [[gnu::always_inline]] Number statistic(int g, double all_cases, double all_controls) const {
        Number statistic{};
        for (int q = 1; q <= g; ++q) {
            Number cases{};
            Number controls{};
            for (int c = 1; c <= cells_.ncell; ++c) {
                const Mask here = group_[c] == double(q);
                cases += select(here, cells_.cases[c], Number{});
                controls += select(here, cells_.size[c] - cells_.cases[c], Number{});
            }
            statistic += group_term(cases, controls, all_cases, all_controls);
        }
        return statistic;
    }

  private:
    // Each cell to its nearest centre; the lanes in which that moved a cell.
    [[gnu::always_inline]] Mask find_nearest(int g, const Mask& going) {
        Mask moved{};
        for (int c = 1; c <= cells_.ncell; ++c) {
            Number distance[kMostCells + 2];
            Number nearest = Number{} + 1.0;
            Number smallest = distance[1] = magnitude(mean_[c] - centre_[1]);
            for (int j = 2; j <= g; ++j) {
                distance[j] = magnitude(mean_[c] - centre_[j]);
                const Mask nearer = distance[j] < smallest;
                nearest = select(nearer, Number{} + double(j), nearest);
                smallest = select(nearer, distance[j], smallest);
            }
            unsure_ = either(unsure_, both(going, has_rival(g, distance, smallest)));
            moved = either(moved, nearest != group_[c]);
            group_[c] = select(going, nearest, group_[c]);
        }
        return moved;
    }

    // Whether another centre is as near as the nearest, within the tolerance. Empty groups are all
    // at 0, in the plain form too, so that one of them is no rival of another.
    [[gnu::always_inline]] Mask has_rival(int g, const Number* distance,
                                          const Number& smallest) const {
        Number near{};
        Number near_and_empty{};
        for (int j = 1; j <= g; ++j) {
            const Number here =
                select(distance[j] - smallest <= tolerance_, Number{} + 1.0, Number{});
            near += here;
            near_and_empty += select(empty_[j], here, Number{});
        }
        return both(near > 1.0, near_and_empty < near);
    }

    // To zero for an empty group.
    [[gnu::always_inline]] void move_centre(int j, const Mask& going) {
        Number sum{};
        Number count{};
        for (int c = 1; c <= cells_.ncell; ++c) {
            const Mask here = group_[c] == double(j);
            sum += select(here, cells_.sum[c], Number{});
            count += select(here, Number{} + cells_.size[c], Number{});
        }
        empty_[j] = count == 0.0;
        centre_[j] = select(going, select(count > 0.0, sum / count, Number{}), centre_[j]);
    }

    const ClusteredCells<Number>& cells_;
    Number tolerance_;
    Number mean_[kMostCells + 1];
    Number largest_;
    Number spread_;
    Number centre_[kMostCells + 2];
    Mask empty_[kMostCells + 2];
    Number group_[kMostCells + 1];
    Mask unsure_{};
};

}  // namespace vort
