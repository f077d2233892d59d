// The inner loops of drawing, for generator.h and random_order.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "numeric/generator.h"
#include "numeric/instructions.h"

namespace vort {

// What is left of n items; see random_order.h.
struct ItemTree {
    static constexpr int kBits = 64;
    static constexpr int kChildren = 16;
    static constexpr int kMostLevels = 7;  // 64 * 16^7 is beyond an int

    // A line of the cache.
    struct alignas(64) Node {
        int start[kChildren];  // of each child: items left in the node before it
    };

    std::uint64_t* words;      // a bit for each item
    Node* nodes[kMostLevels];  // the lowest level, above the words, first
    int levels;
};

template <Instructions kInstructions>
struct DrawKernel {
    // out[c] = (left - c) * u, cut to a whole number, u being the c-th number of the stretch.
    static void positions(const Generator::Stretch& from, int size, int left, int* out);

    // Takes n items away, at most Generator::kStretch, one after the other; item[c] holds a
    // position among those that are left, and then the number of the item that stood there.
    static void take_items(const ItemTree& tree, int n, int* item);
};

}  // namespace vort
