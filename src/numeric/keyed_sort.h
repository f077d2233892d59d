// The index sort of many keys, with the same order of ties and a fraction of the time.
//
// An index sort looks every key up through an index, and its comparisons branch on what they find:
// at half a million keys each look-up is a cache miss and every other branch is predicted wrong.
// Here key and index move together, and the partition looks ahead without branching: it compares 64
// elements at each end with the pivot, a register of keys at a time, keeps a bit for each that
// stands on the wrong side, and exchanges the elements of the k-th bit on the left and the k-th on
// the right (after S. Edelkamp, A. Weiss, "BlockQuicksort", ESA 2016). These are the very pairs
// that the scans of the plain partition would have stopped at, so the exchanges, and with them the
// order of equal keys, stay as they are:
//
//     pivot 5:   7 3 5 9 | .. | 2 8 5 6      stops upward 7 5 9, downward 5 2 (from the right)
//                5 3 2 9 | .. | 5 8 7 6      7 <-> 5, 5 <-> 2; the 9 waits for the next block
//
// Keys may be any values but NaN. Cost: n log2(n) comparisons, of 16 bytes an element.
#pragma once

#include <cstddef>
#include <span>

#include "numeric/instructions.h"
#include "numeric/keyed_index.h"

namespace vort {

// Sorts by key, ascending; equal keys end in the order in which Quickindex leaves them. Only the
// first `wanted` places need to be right: parts of the array that lie behind them are left as they
// are when that is known.
void sort_keyed(std::span<KeyedIndex> items, std::size_t wanted,
                Instructions instructions = best_instructions());
inline void sort_keyed(std::span<KeyedIndex> items) {
    sort_keyed(items, items.size());
}

}  // namespace vort
