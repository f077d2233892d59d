// Drawing without replacement from many items.
//
// The items that are left are the bits set in a row of 64-bit words, and a tree of counts over the
// words (P. M. Fenwick, "A new data structure for cumulative frequency tables", Software: Practice
// and Experience 24, 1994, pp. 327-336) finds the word that holds the k-th of them. Nothing is
// moved, so a million items are drawn in the time that a few thousand would take from a list whose
// gaps are closed.
//
// Cost: log2(n / 64) steps down the tree and as many up, and six within the word.
#pragma once

#include <cstdint>
#include <vector>

namespace vort {

class RemainingItems {
  public:
    // Items 0 .. n-1.
    explicit RemainingItems(int n);

    // Takes away the k-th item (from 0) of those left, and returns its number.
    int take(int k);

  private:
    std::vector<std::uint64_t> words_;
    std::vector<int>
        tree_;  // from 1; tree_[w] counts the items of the words that end with word w-1
    int top_;   // the largest power of two that is no larger than the number of words
};

}  // namespace vort
