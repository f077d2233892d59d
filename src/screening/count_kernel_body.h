// The body of CountKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstdint>
#include <cstring>

#include "screening/count_kernel.h"

namespace vort {

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
