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

[[gnu::always_inline]] inline std::uint64_t bits(std::uint64_t word) {
    return static_cast<std::uint64_t>(__builtin_popcountll(word));
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
        std::uint64_t ones = 0;
        std::uint64_t twos = 0;
        std::uint64_t missings = 0;
        for (std::size_t b = 0; b < plane_size; b += sizeof(std::uint64_t)) {
            const std::uint64_t wanted = plane::word(mask + b);
            ones += plane::bits(plane::word(one + b) & wanted);
            twos += plane::bits(plane::word(two + b) & wanted);
            missings += plane::bits(plane::word(missing + b) & wanted);
        }
        out[c] = {{static_cast<int>(ones), static_cast<int>(twos), static_cast<int>(missings)}};
    }
}

}  // namespace vort
