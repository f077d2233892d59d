// The body of CountKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstdint>
#include <cstring>

#include "screening/count_kernel.h"

namespace vort {

namespace plane {

[[gnu::always_inline]] inline std::uint64_t word(const unsigned char* bytes) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes, sizeof bits);
    return bits;
}

}  // namespace plane

template <Instructions kInstructions>
void CountKernel<kInstructions>::count(const unsigned char* planes, int columns,
                                       std::size_t plane_size, const unsigned char* mask,
                                       PlaneCounts* out) {
    for (int c = 0; c < columns; ++c, planes += 3 * plane_size) {
        const unsigned char* const one = planes;
        const unsigned char* const two = planes + plane_size;
        const unsigned char* const missing = planes + 2 * plane_size;
        int ones = 0;
        int twos = 0;
        int missings = 0;
        for (std::size_t b = 0; b < plane_size; b += sizeof(std::uint64_t)) {
            const std::uint64_t wanted = plane::word(mask + b);
            ones += __builtin_popcountll(plane::word(one + b) & wanted);
            twos += __builtin_popcountll(plane::word(two + b) & wanted);
            missings += __builtin_popcountll(plane::word(missing + b) & wanted);
        }
        out[c] = {{ones, twos, missings}};
    }
}

}  // namespace vort
