// The quick test of a pair of markers in 32 bits.
//
//     bits 31 .. 28    degrees of freedom, 0 where fewer than two cells have individuals
//     bits 27 .. 0     the statistic in units of 2^-21, rounded down; the largest number stands
//                      for it and everything above, where the p-value is 0
//
// Among codes of the same degrees of freedom a higher code is a smaller p-value, but for what
// rounding blurs; pair_bounds.h says how much that is.
#pragma once

#include <cstdint>

namespace vort {

using PairCode = std::uint32_t;

constexpr int kStatisticBits = 28;
constexpr int kFractionBits = 21;
constexpr PairCode kLargestStatistic = (PairCode{1} << kStatisticBits) - 1;
constexpr int kMostFreedom = 8;  // nine cells

constexpr int freedom_of(PairCode code) {
    return static_cast<int>(code >> kStatisticBits);
}
constexpr PairCode statistic_of(PairCode code) {
    return code & kLargestStatistic;
}
constexpr PairCode pair_code(int freedom, PairCode statistic) {
    return static_cast<PairCode>(freedom) << kStatisticBits | statistic;
}

}  // namespace vort
