// The inner loop of label_runs.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "numeric/generator.h"
#include "numeric/instructions.h"

namespace vort {

// Orders that are drawn side by side.
struct LabelRunLanes {
    static constexpr int kLanes = 16;
    static constexpr int kEnds = 3;  // the last of four runs ends where the order does

    Generator::Stretch from[kLanes];
    int ends[kEnds][kLanes];  // items left up to the end of each run
};

// Where labels go: 64 draws of order l to words[l * stride].
struct LabelPlanes {
    std::uint64_t* words;
    std::size_t stride;
};

template <Instructions kInstructions>
struct LabelRunKernel {
    // For the first `orders` lanes draws count * 64 labels, at most Generator::kStretch, and moves
    // the ends; `left` items are left before the first draw. The runs' labels are 1, 0, 1, 0.
    // Labels drawn when no item is left mean nothing.
    static void draw(LabelRunLanes& lanes, int orders, int left, int count, const LabelPlanes& out);
};

}  // namespace vort
