// The inner loops of drawing, for draw_positions.h and label_lanes.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "numeric/instructions.h"

namespace vort {

// What is left of kLanes copies of the same labels; see label_lanes.h.
struct LabelState {
    std::int16_t* ends;   // labels up to the end of each word, kLanes counts for a word
    int words;            // an even number
    std::uint64_t* word;  // kLanes words for each 64 labels
};

template <Instructions kInstructions>
struct DrawKernel {
    // out[c] = (left - c) * u, cut to a whole number, u being the c-th sum of the three quotients
    // modulo 1.
    static void positions(const double* x, const double* y, const double* z, int size, int left,
                          int* out);

    // out[c * kLanes + l] = rows[l * n + c], which fits.
    static void interleave(const int* rows, std::size_t n, std::int16_t* out);

    // For each of n draws takes from each lane the item at its position, kLanes positions a draw;
    // bit l of out[c] is the label of the c-th item of lane l.
    static void labels(const std::int16_t* positions, std::size_t n, const LabelState& state,
                       unsigned char* out);
};

}  // namespace vort
