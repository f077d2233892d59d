// The inner loops of sort_keyed; see keyed_sort.h.
#pragma once

#include <cstddef>

#include "numeric/instructions.h"
#include "numeric/keyed_index.h"

namespace vort {

// Elements whose keys are compared with a pivot in one go.
constexpr int kSortWindow = 64;

template <Instructions kInstructions>
struct SortKernel {
    // Sorts items[0 .. size-1], of which the first `wanted` places need to be right. Around a short
    // range more is read, not written: items has at least kSortWindow elements, of which those
    // behind the first `size` may be anything.
    static void sort(KeyedIndex* items, std::size_t size, std::size_t wanted);
};

}  // namespace vort
