// The index sort of many keys, with the same order of ties and a fraction of the time.
//
// An index sort looks every key up through an index, and its comparisons branch on what they find:
// at half a million keys each look-up is a cache miss and every other branch is predicted wrong.
// Here key and index move together, and the partition looks ahead without branching: it lists,
// for a block of elements at each end, the ones that stand on the wrong side of the pivot, and
// exchanges the k-th of the left list with the k-th of the right one (S. Edelkamp, A. Weiss,
// "BlockQuicksort", ESA 2016). These are the very pairs that the scans of the plain partition would
// have stopped at, so the exchanges, and with them the order of equal keys, stay as they are. What
// remains between the blocks is left to the plain scans.
//
// Keys may be any values but NaN. Cost: n log2(n) comparisons, of 16 bytes an element.
#pragma once

#include <span>

namespace vort {

struct KeyedIndex {
    double key;
    int index;
};

// Sorts by key, ascending; equal keys end in the order in which Quickindex leaves them.
void sort_keyed(std::span<KeyedIndex> items);

}  // namespace vort
