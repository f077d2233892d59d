// P-values of single pairs as the program defines them: every cell's phenotypes are added up in the
// order of the individuals.
//
// Cost: some three steps for each individual. The bounds of a code spare it where they meet.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

#include "csm/pair_bounds.h"
#include "csm/pair_numbers.h"
#include "csm/pair_search.h"

namespace vort {

class ExactPairs {
  public:
    // What the input and the others refer to must outlive this.
    ExactPairs(const PairSearchInput& input, std::span<const PairCode> codes,
               const PairBounds& bounds);

    // The p-value of a pair. Safe from many threads at once.
    double pvalue(int pair) const;

    // Those of many pairs.
    std::vector<double> pvalues(std::span<const int> pairs, int threads) const;

    // How many were computed from the individuals.
    std::int64_t computed() const { return computed_; }

  private:
    double sum(int pair) const;

    PairSearchInput input_;
    std::span<const PairCode> codes_;
    const PairBounds& bounds_;
    PairNumbers numbers_;
    mutable std::atomic<std::int64_t> computed_ = 0;
};

}  // namespace vort
