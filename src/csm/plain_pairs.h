// The search of all pairs as it is defined: every p-value, a sort of all, the step-up rule from the
// last one down.
//
// It serves phenotypes with more than two values, and those without a variance; its cost is one
// pass over the individuals for each pair.
#pragma once

#include "csm/pair_search.h"
#include "csm/step_up.h"

namespace vort {

// Numbers of the pairs kept, at most max_retain. The transcript is told of every thousandth pair,
// and of tests that did not converge, in the order of the tests.
std::vector<int> search_plainly(const PairSearchInput& input, const StepUpRule& rule,
                                int max_retain, int threads, Transcript& transcript);

// Sets are announced by the thousand.
constexpr int kAnnouncePairs = 1000;
inline void announce_pair(std::int64_t pair, Transcript& transcript) {
    if (pair % kAnnouncePairs == 0) transcript << "j=" << pair << '\n';
}

}  // namespace vort
