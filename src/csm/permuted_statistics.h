// The statistics of one marker set's groupings under random orders of the phenotype.
//
// The orders are known by where their draws begin, so each can be drawn again. Of an order of a
// case-control phenotype nothing but the numbers of cases in the genotype cells is kept: orders are
// drawn as planes of labels (numeric/label_runs.h), combined with the planes of the cells, and
// their bits counted. From the counts a single marker's groups follow exactly. A pair's groups
// follow from sums of the phenotype, which counts give up to rounding only, so that eight orders
// are clustered side by side with a tolerance, and those in which two distances came too close are
// drawn again and clustered in the plain form (some in a million, and sets whose cells are alike).
//
// Cost: for 1,000 individuals some 0.9 us an order, most of it its draws.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "csm/cell_tallies.h"
#include "csm/cluster_kernel.h"
#include "numeric/generator.h"
#include "numeric/lanes.h"

namespace vort {

constexpr int kOrders = 500;

class PermutedStatistics {
  public:
    virtual ~PermutedStatistics() = default;

    // statistic[l]: of order first + l (from 0; `first` a multiple of kLanes) in g groups, for the
    // kLanes orders from there on. Those past the last order are anything.
    virtual void compute(int g, int first, double* statistic) = 0;
};

// Orders of n draws each, from `start` on. Nothing is owned. The plain form, an order at a time.
std::unique_ptr<PermutedStatistics> plain_statistics(const BuilderData& data, const SetCells& cells,
                                                     const GroupingRules& rules,
                                                     const Generator& start);

// The same by the fastest form that serves.
std::unique_ptr<PermutedStatistics> permuted_statistics(const BuilderData& data,
                                                        const SetCells& cells,
                                                        const GroupingRules& rules,
                                                        const Generator& start);

}  // namespace vort
