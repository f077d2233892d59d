// The search of all pairs of markers.
//
// All m (m - 1) / 2 pairs are tested by the quick test (docs/method.md, section 3), ordered by
// their p-values and cut off by the step-up rule (section 4). What comes out is what this plain
// form gives, byte for byte, in a small part of its time: pair_search.cpp tells how.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/transcript.h"
#include "csm/marker_planes.h"
#include "csm/pair_counts.h"
#include "numeric/instructions.h"

namespace vort {

// At most 65,536 markers. What is referred to must outlive the search.
struct PairSearchInput {
    const MarkerPlanes& markers;
    std::span<const double> phenotype;  // centred, in the order of the individuals
    double sigma;                       // its variance, divisor n
    PairCodeRoom* room = nullptr;       // memory to be used again, where there is any
};

// How the result was come by.
struct PairSearchStatistics {
    enum class StepUp {
        kNotAsked,  // in the plain form, without pairs, or where none may be kept
        kBins,      // decided by how many pairs fall into which range of p-values
        kBounds,    // by bounds of the single p-values about the cut
        kPvalues    // by those p-values themselves
    };
    enum class Order {
        kEmpty,     // nothing is kept
        kDistinct,  // the p-values that matter differ, and tell the order
        kTies,      // the order that the sort leaves equal p-values in was worked out
        kPlain      // all p-values were sorted
    };
    StepUp step_up = StepUp::kNotAsked;
    Order order = Order::kEmpty;
    std::int64_t pvalues = 0;  // computed in full
};

struct PairSearchResult {
    std::vector<int> kept;  // numbers of the pairs, from 1, smallest p-value first
    PairSearchStatistics statistics;
};

// Keeps at most max_retain pairs; none where that is below 1. The transcript is told of every
// thousandth pair. The result depends neither on `threads` nor on `set`.
PairSearchResult search_pairs(const PairSearchInput& input, double fdr_cutoff, double alpha,
                              int max_retain, int threads, Transcript& transcript,
                              Instructions set = best_instructions());

}  // namespace vort
