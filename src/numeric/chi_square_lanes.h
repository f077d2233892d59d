// Upper tails of the chi-square distribution for many statistics at once.
//
// 1 - pchisq(df, x) is the bulk of a screening's arithmetic: an iteration of some ten divisions,
// each waiting for the one before. Eight statistics run it side by side here, each until its own
// iteration ends: a lane that has converged keeps its sum while the others go on, so every lane
// takes the very steps of the plain form. Logarithm and exponential stay those of the C library, a
// lane at a time. Statistics wait in four lines, by their degrees of freedom and by which of the
// two expansions they need; what does not fill eight lanes may go on waiting for more.
//
// Cost: that of the slowest of eight statistics, and two calls of the C library for each.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "numeric/chi_square_kernel.h"
#include "numeric/instructions.h"

namespace vort {

class ChiSquareQueue {
  public:
    // Room for up to `capacity` statistics between two calls of take or take_eights.
    ChiSquareQueue(Instructions instructions, int capacity);

    // df is 1 or 2; statistic >= 0 and finite; tag is the caller's, to tell the statistics apart.
    void add(int df, double statistic, int tag) { add_if(true, df, statistic, tag); }

    // Costs the same whether it is wanted or not: a branch that cannot be foreseen costs more.
    void add_if(bool wanted, int df, double statistic, int tag);

    // Calls receive(tag, p-value) for all that was added, in no particular order; nothing waits
    // then.
    template <typename Receive>
    void take(Receive receive) {
        for (Line& line : lines_) serve(line, line.size, receive);
    }

    // The same for as many as fill groups of kStatisticsAtOnce; the others go on waiting.
    template <typename Receive>
    void take_eights(Receive receive) {
        for (Line& line : lines_) serve(line, line.size / kGroup * kGroup, receive);
    }

  private:
    static constexpr std::size_t kGroup = kStatisticsAtOnce;

    // What waits for one of the expansions under one number of degrees of freedom.
    struct Line {
        double a;
        double gln;
        bool in_series;
        std::size_t size;
        std::vector<double> x;
        std::vector<int> tag;
        std::vector<double> tail;
    };

    template <typename Receive>
    void serve(Line& line, std::size_t size, Receive receive) {
        evaluate(line, size);
        for (std::size_t k = 0; k < size; ++k) receive(line.tag[k], line.tail[k]);
        std::copy(line.x.begin() + size, line.x.begin() + line.size, line.x.begin());
        std::copy(line.tag.begin() + size, line.tag.begin() + line.size, line.tag.begin());
        line.size -= size;
    }

    void evaluate(Line& line, std::size_t size) const;

    Instructions instructions_;
    std::array<Line, 4> lines_;  // fraction and series under one degree, then under two
};

// Written to both lines, and counted in one, since which it is cannot be foreseen.
inline void ChiSquareQueue::add_if(bool wanted, int df, double statistic, int tag) {
    Line* const lines = &lines_[df == 1 ? 0 : 2];
    const double x = statistic / 2.0;
    const bool in_series = x < df / 2.0 + 1.0;
    for (int series = 0; series < 2; ++series) {
        Line& line = lines[series];
        line.x[line.size] = x;
        line.tag[line.size] = tag;
        line.size += static_cast<std::size_t>(wanted & (in_series == (series != 0)));
    }
}

}  // namespace vort
