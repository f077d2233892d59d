// Counting the cases among the individuals of a plane; see genotype_tile.h.
//
// Included by the sources that compile the kernel, once for each set of instructions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "numeric/instructions.h"

namespace vort {

// count[0 .. 2] of a column: individuals of the mask with genotype 1, with genotype 2, missing.
struct PlaneCounts {
    int count[3];
};

template <Instructions kInstructions>
struct CountKernel {
    // `planes` holds three planes of plane_size bytes for each of `columns` columns.
    static void count(const unsigned char* planes, int columns, std::size_t plane_size,
                      const unsigned char* mask, PlaneCounts* out);
};

template <Instructions kInstructions>
void CountKernel<kInstructions>::count(const unsigned char* planes, int columns,
                                       std::size_t plane_size, const unsigned char* mask,
                                       PlaneCounts* out) {
    for (int c = 0; c < columns; ++c) {
        for (int p = 0; p < 3; ++p, planes += plane_size) {
            int bits = 0;
            for (std::size_t b = 0; b < plane_size; b += sizeof(std::uint64_t)) {
                std::uint64_t has = 0;
                std::uint64_t wanted = 0;
                std::memcpy(&has, planes + b, sizeof has);
                std::memcpy(&wanted, mask + b, sizeof wanted);
                bits += __builtin_popcountll(has & wanted);
            }
            out[c].count[p] = bits;
        }
    }
}

}  // namespace vort
