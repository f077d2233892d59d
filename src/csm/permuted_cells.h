// The genotype cells of a marker set under random orders of a case-control phenotype.
//
// The score of a marker set looks at 500 orders of the phenotype, and of each only at sums over the
// cells. Eight orders are drawn at a time (numeric/label_lanes.h) and summed side by side: an
// order's additions run in the order of the individuals, as if it were alone, so every sum has the
// bytes that it would have alone. The individuals are listed cell by cell, so that a cell's eight
// sums stay in registers.
//
// Cost: for each individual and order a draw of 2 nanoseconds and an addition or two.
#pragma once

#include <span>
#include <vector>

#include "csm/cluster_kernel.h"
#include "csm/set_cells.h"
#include "numeric/label_lanes.h"
#include "numeric/lanes.h"

namespace vort {

class PermutedCells {
  public:
    // yy[0 .. n-1]: the phenotype as it stands. with_sums: pairs need the sums, single markers the
    // counts only.
    PermutedCells(const SetCells& cells, std::span<const double> yy, bool with_sums);

    // Whether a phenotype can be permuted here: two values, one of them positive, and not too many.
    static bool serves(std::span<const double> yy);

    // Draws the next `orders` orders, at most kLanes; they take n draws of the generator each.
    void draw(int orders);

    // The cells under these orders, where the sums are wanted; valid until the next draw.
    // `cases` and `controls` are the sizes of the groups, individuals in no cell included.
    PermutedCellSums sums(double cases, double controls) const;

    // Numbers of cases in cells 1 .. ncell under the l-th of these orders, where only counts are.
    void count_cases(int l, int* cases) const;

    int ncell() const { return static_cast<int>(cell_count_.size()) - 1; }

    // Individuals in each cell 1 .. ncell.
    const std::vector<int>& cell_count() const { return cell_count_; }

  private:
    void draw_phenotypes(int orders);
    void sum_cells();

    std::size_t n_;
    bool with_sums_;
    double value_[2];              // of a control and of a case; 0 and 1 where only counts matter
    std::vector<int> member_;      // individuals (from 0) that are in cells, in their order
    std::vector<int> by_cell_;     // the same, cell by cell
    std::vector<int> cell_count_;  // elements 1 .. ncell
    Instructions instructions_;
    LabelLanes labels_;
    std::vector<int> positions_;        // n for each lane
    std::vector<unsigned char> label_;  // of each individual, a bit for each order
    double mean_[kLanes] = {};
    std::vector<double> sum_;  // of each cell, kLanes values
};

}  // namespace vort
