// The quick tests of all pairs, from counts instead of sums in the order of the individuals.
//
// With two phenotype values, the sum of a cell is known up to rounding from its cases and controls,
// and those are counted 64 individuals at a time: markers become bit planes with the cases in front
// and the controls behind, each padded to whole words, and a cell's cases are the bits that two
// planes share among the first words. The statistic of a pair is kept to six decimals, as a
// PairCode; pair_bounds.h tells how it bounds the p-value.
//
// Tiles of rows (pairs with the same first marker) are spread over the threads. Within a tile the
// second markers are taken in blocks that stay in the cache for all rows.
//
// Cost: on one core of a processor with AVX-512, 15 ns a pair for 1,000 individuals, and for 10,000
// some 110 ns, half of that where no genotype is missing; four bytes for each pair.
#pragma once

#include <optional>
#include <span>

#include "common/large_array.h"
#include "csm/marker_planes.h"
#include "csm/pair_code.h"
#include "numeric/instructions.h"

namespace vort {

// A phenotype with two values, the larger one the cases'.
struct TwoValues {
    double case_value;
    double control_value;
    int cases;
    int controls;
};

// Nothing where the phenotype has only one value, or more than two.
std::optional<TwoValues> two_values(std::span<const double> phenotype);

// Room for codes, kept from one search to the next: most of a search's memory, which costs time
// where the system has to hand it out anew.
class PairCodeRoom {
  public:
    // What is there may be anything.
    std::span<PairCode> take(std::size_t size) {
        if (size > size_) {
            codes_ = LargeArray<PairCode>();
            codes_ = LargeArray<PairCode>(size);
            size_ = size;
        }
        return {codes_.data(), size};
    }

  private:
    LargeArray<PairCode> codes_;
    std::size_t size_ = 0;
};

// Code of every pair, the first one's at 0, in `room`. `phenotype` has the two values; sigma > 0.
std::span<const PairCode> count_pairs(const MarkerPlanes& markers,
                                      std::span<const double> phenotype, const TwoValues& values,
                                      double sigma, int threads, Instructions set,
                                      PairCodeRoom& room);

}  // namespace vort
