// The numbers of the pairs of m markers; numeric/combinations.h has the order.
//
// Pairs count from 1, markers here from 0. The pairs whose first marker is a are a row: they have
// consecutive numbers. Up to 65,536 markers all numbers are ints.
#pragma once

#include <cmath>
#include <cstdint>

namespace vort {

struct MarkerPair {
    int first;
    int second;
};

class PairNumbers {
  public:
    explicit PairNumbers(int markers) : markers_(markers) {}

    std::int64_t count() const { return before_row(markers_); }

    // Pairs with a first marker below `first`.
    std::int64_t before_row(int first) const {
        return std::int64_t{first} * (2 * std::int64_t{markers_} - first - 1) / 2;
    }

    // A square root tells the row, and exact numbers whether it was rounded into the next one.
    MarkerPair markers_of(std::int64_t number) const {
        const double width = 2.0 * markers_ - 1;
        const double under_root = width * width - 8.0 * static_cast<double>(number - 1);
        int row = static_cast<int>((width - std::sqrt(under_root)) / 2);
        while (before_row(row) >= number) --row;
        while (before_row(row + 1) < number) ++row;
        return {row, row + static_cast<int>(number - before_row(row))};
    }

  private:
    int markers_;
};

}  // namespace vort
