// All pairs by what their codes say: how many are in which range of p-values, and which.
//
// One pass over the codes counts them by bins (pair_bounds.h), some hundred bins for each power of
// ten of the p-value; after that, whatever is asked about places and ranges is answered from the
// counts, and only pairs near a cut are looked at one by one.
//
// Cost: a pass over the codes, under a nanosecond a pair, for the census and for each collection.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "csm/pair_bounds.h"
#include "csm/step_up.h"

namespace vort {

class PairCensus {
  public:
    // The codes and the bounds must outlive the census.
    PairCensus(std::span<const PairCode> codes, const PairBounds& bounds, int threads);

    // One group for each bin that has pairs.
    std::vector<PvalueGroup> groups() const;

    // Pairs whose p-values are below `pvalue`, by their bins.
    std::int64_t below(double pvalue) const;

    // Numbers, ascending, of the pairs whose bins allow for p-values from `low` to `high`.
    std::vector<int> collect(double low, double high) const;

  private:
    std::span<const PairCode> codes_;
    const PairBounds& bounds_;
    int threads_;
    std::vector<std::int64_t> count_;  // of the bins
};

}  // namespace vort
