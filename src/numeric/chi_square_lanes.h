// Upper tails of the chi-square distribution for many statistics at once.
//
// 1 - pchisq(df, x) is the bulk of a screening's arithmetic: an iteration of some ten divisions,
// each waiting for the one before. Eight statistics run it side by side here, each until its own
// iteration ends: a lane that has converged keeps its sum while the others go on, so every lane
// takes the very steps of the plain form. Logarithm and exponential stay those of the C library, a
// lane at a time. Statistics are first sorted by which of the two expansions they need; what does
// not fill eight lanes is padded.
//
// Cost: about a third of the plain form.
#pragma once

#include <vector>

#include "numeric/instructions.h"

namespace vort {

// What waits for its p-value: `tag` is the caller's, to tell which statistic it was.
class ChiSquareQueue {
  public:
    struct Result {
        int tag;
        double pvalue;
    };

    explicit ChiSquareQueue(Instructions instructions);

    // df is 1 or 2; statistic >= 0 and finite.
    void add(int df, double statistic, int tag);

    // The p-values of all that was added, in no particular order; the queue is empty then. Valid
    // until the next call.
    const std::vector<Result>& take();

  private:
    struct Items {
        std::vector<double> a;
        std::vector<double> x;
        std::vector<double> gln;
        std::vector<int> tag;
    };

    void finish(Items& items, double padding,
                void (*evaluate)(const double*, const double*, const double*, int, double*));

    Instructions instructions_;
    Items series_;
    Items fraction_;
    std::vector<double> tail_;
    std::vector<Result> results_;
};

}  // namespace vort
