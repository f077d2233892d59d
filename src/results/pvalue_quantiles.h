// The r-th smallest p-value of a screening, observed and in the permuted data sets: what a QQ plot
// of the smallest of four correlated p-values needs, since that is not uniform.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "results/tables.h"

namespace vort {

class PvalueQuantiles {
  public:
    explicit PvalueQuantiles(int markers = 0);

    // `ranking`: columns in ascending order of their p-values.
    void set_observed(std::span<const double> pvalues, std::span<const int> ranking);
    // p-values of one permuted data set, in any order; each in [0, 1].
    void add_permuted(std::span<const double> pvalues);
    // What another one of as many markers was given, behind what this one was.
    void append(const PvalueQuantiles& next);

    // As one number after the other; restore() returns false where they cannot be of so many
    // markers.
    std::vector<double> observed() const { return observed_; }
    std::vector<float> permuted() const;
    bool restore(std::vector<double> observed, std::span<const float> permuted);

    // A row for each rank that is kept, its values as they are written; expectation and band are
    // not available without permuted data sets.
    std::vector<QuantileRow> rows() const;

  private:
    std::vector<long> ranks_;                   // from 1, ascending
    std::vector<double> observed_;              // at each of them
    std::vector<std::vector<float>> permuted_;  // of each, of each data set
    std::vector<std::uint32_t> bins_;
};

}  // namespace vort
