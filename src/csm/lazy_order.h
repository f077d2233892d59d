// The first pairs in the order in which Quickindex leaves all of them, equal p-values included.
//
// How Quickindex (numeric/index_sort.cpp) orders equal keys follows from its exchanges, and those
// from the answers to two questions, asked of an item and the pivot: is the key below it, is it
// above it. Here the same exchanges are made on the same items, but few keys are known. Most
// questions are answered by the pair's code: the pivot's p-value is turned into two codes for each
// number of degrees of freedom, one below which all p-values are above the pivot's, and one from
// which on all are below it. Only for the codes between the p-value itself is worked out.
//
//     code     0 ........... from ..... to ........................ largest
//     p-value  above pivot     |  asked for  |   below pivot
//
// P-values are kept, one for all pairs of the same genotypes (see twin_markers.h), since those are
// what ties mostly are.
//
// Ranges are independent of each other once they are split, so those that do not contain a place
// that is wanted stay unsorted. Short ranges are handled by their p-values throughout.
//
// Example: of 4.5 million pairs, 100 wanted. The first split asks 4.5 million questions, the next
// one about half as many, and so on: nine million answers from codes, and p-values of two or three
// hundred pairs.
//
// Cost: some 10 ns for each pair and four bytes; p-values of about twice the wanted pairs, and of
// those that tie with them.
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "common/large_array.h"
#include "csm/exact_pairs.h"
#include "csm/marker_planes.h"
#include "csm/pair_bounds.h"
#include "csm/pair_numbers.h"

namespace vort {

class LazyOrder {
  public:
    // What is referred to must outlive this.
    LazyOrder(const MarkerPlanes& markers, std::span<const PairCode> codes,
              const PairBounds& bounds, const ExactPairs& exact);

    // Spares working out p-values that are at hand: pairs[k] has pvalues[k].
    void know(std::span<const int> pairs, std::span<const double> pvalues);

    // Numbers, from 1, of the pairs in the first `wanted` places. Once only.
    std::vector<int> first(int wanted);

  private:
    struct Places {
        int lo;
        int hi;
    };
    using Parts = std::pair<Places, Places>;
    class CodePivot;
    class KnownPivot;

    // The same number for pairs of the same genotypes.
    std::int64_t twin(int pair) const;
    double pvalue(int pair);
    void insertion_sort(Places range);
    void swap_if_greater(int first, int second);
    // Brings the median of three items of the range to its second place.
    void place_pivot(Places range);
    Parts split(Places range);
    template <typename Pivot>
    Parts split_by(const Pivot& pivot, Places range);

    std::span<const PairCode> codes_;
    const PairBounds& bounds_;
    const ExactPairs& exact_;
    PairNumbers numbers_;
    std::vector<int> twin_marker_;
    std::unordered_map<std::int64_t, double> known_;  // by twin()
    LargeArray<int> items_;                           // elements 1 .. N
};

}  // namespace vort
