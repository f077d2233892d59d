// What the code of a pair says about its p-value.
//
// The p-value of the program, p, comes from a statistic S that was summed individual by individual,
// by a tail of the chi-square distribution that stops at three ten-millionths. The code holds S*,
// the same statistic from counts. Between p and the code lie
//
//   the summation     |S - S*| <= error, see statistic_error(). It is 2e-9 for 1,000 individuals
//                     and grows with the square of their number.
//   the code          S* is rounded down by up to 2^-21.
//   the series        The program's tail is off by less than 4e-7 of itself; 1e-5 is taken.
//   1 - (1 - Q)       The program subtracts twice. Q loses what is below 2^-53, and both roundings
//                     keep the order, so that the same subtractions of the bounds bound p.
//
// Small tails come out as a few multiples of 2^-53, so the bounds often meet: then p is known
// without a sum. Below 2^-54 all are 0.
//
// Where a p-value is to be compared with very many codes, the comparison is turned round: the
// bounds of the statistic at which p may be met, for each number of degrees of freedom, are two
// codes (see CodeLimits).
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "csm/pair_code.h"
#include "csm/pair_counts.h"

namespace vort {

struct PvalueBounds {
    double low;
    double high;
    bool known() const { return low == high; }
};

// How far sums in the order of the individuals may take the statistic from its value in real
// numbers, and the kernel's arithmetic as well. With V the sum of the positive or of the negative
// phenotypes, whichever is larger in size, and u = 2^-53: no partial sum of a cell is above V, so
// the sum of n_c terms is off by at most u n_c V, and S by
//
//     2 / sigma * sum over cells of |mean_c - ybar| u n_c V  <=  6 u V^2 / sigma,
//
// and by another 4 u V^2 / sigma through ybar. The few operations after the sums add terms of the
// order u V max|y| / sigma. The result has both eight times as large as they need be.
double statistic_error(const TwoValues& values, double sigma);

// Errors above this are not for these bounds.
constexpr double kLargestStatisticError = 1.0 / 1024;

// Codes that share their upper bits: 1/64 of the statistic.
constexpr int kBinBits = 15;
constexpr std::size_t kBinCount = static_cast<std::size_t>(kMostFreedom + 1)
                                  << (kStatisticBits - kBinBits);
constexpr std::size_t bin_of(PairCode code) {
    return code >> kBinBits;
}

// Of codes with d degrees of freedom: those below from[d] have p-values above a given one for sure,
// codes from[d] .. to[d] - 1 may have any, those from to[d] on have p-values below it for sure, or,
// where the given one is 0, just as surely 0.
struct CodeLimits {
    std::array<PairCode, kMostFreedom + 1> from;
    std::array<PairCode, kMostFreedom + 1> to;
};

class PairBounds {
  public:
    explicit PairBounds(double error) : error_(error) {}

    // Of the p-values that pairs with this code, or with a code in this bin, may have.
    PvalueBounds of_code(PairCode code) const;
    PvalueBounds of_bin(std::size_t bin) const;

    CodeLimits limits(double pvalue) const;

  private:
    double error_;
};

}  // namespace vort
