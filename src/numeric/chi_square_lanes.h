// Upper tails of the chi-square distribution for many statistics at once.
//
// 1 - pchisq(df, x) is the bulk of a screening's arithmetic: an iteration of some ten divisions,
// each waiting for the one before. Eight statistics run it side by side here, each until its own
// iteration ends: a lane that has converged keeps its sum while the others go on, so every lane
// takes the very steps of the plain form. Logarithm and exponential stay those of the C library, a
// lane at a time. Statistics are first sorted by which of the two expansions they need; what does
// not fill eight lanes is padded.
//
// Cost: that of the slowest of eight statistics, and two calls of the C library for each.
#pragma once

#include <cstddef>
#include <vector>

#include "numeric/instructions.h"

namespace vort {

class ChiSquareQueue {
  public:
    // Room for up to `capacity` statistics at a time.
    ChiSquareQueue(Instructions instructions, int capacity);

    // df is 1 or 2; statistic >= 0 and finite; tag is the caller's, to tell the statistics apart.
    void add(int df, double statistic, int tag);

    // Calls receive(tag, p-value) for all that was added, in no particular order; the queue is
    // empty then.
    template <typename Receive>
    void take(Receive receive) {
        for (Items* items : {&series_, &fraction_}) {
            evaluate(*items);
            for (std::size_t k = 0; k < items->size; ++k) receive(items->tag[k], items->tail[k]);
            items->size = 0;
        }
    }

  private:
    // What waits for one of the expansions.
    struct Items {
        explicit Items(std::size_t capacity);

        std::size_t size = 0;
        std::vector<double> a;
        std::vector<double> x;
        std::vector<double> gln;
        std::vector<int> tag;
        std::vector<double> tail;
    };

    void evaluate(Items& items) const;

    Instructions instructions_;
    Items series_;
    Items fraction_;
    double log_gamma_[3];  // of df / 2
};

// Written to both queues, and counted in one, since which it is cannot be foreseen.
inline void ChiSquareQueue::add(int df, double statistic, int tag) {
    const double a = df / 2.0;
    const double x = statistic / 2.0;
    const std::size_t in_series = x < a + 1.0 ? 1 : 0;
    for (Items* items : {&series_, &fraction_}) {
        const std::size_t k = items->size;
        items->a[k] = a;
        items->x[k] = x;
        items->gln[k] = log_gamma_[df];
        items->tag[k] = tag;
    }
    series_.size += in_series;
    fraction_.size += 1 - in_series;
}

}  // namespace vort
