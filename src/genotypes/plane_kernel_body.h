// The body of PlaneKernel, for the sources that compile it, once for each set of instructions.
//
// A word of 64 bits holds 32 genotypes, the low bits of their codes in its even places and the high
// bits in its odd ones. The two kinds are drawn apart, each into 32 bits; two words make a word of
// every plane, by the table of codes in genotypes.h:
//
//     one = high & ~low      two = ~high & ~low      missing = low & ~high
//
// Processors with an instruction that gathers the bits of a mask need one for each kind. Elsewhere
// five swaps sort a word, each moving the inner two quarters of ever longer runs past each other:
// hlhlhlhl -> hhllhhll -> hhhhllll.
//
// Cost: some ten operations for 64 genotypes, or sixty without that instruction; memory is as slow.
#pragma once

#include <cstdint>
#include <cstring>

#include "genotypes/plane_kernel.h"

#ifdef __BMI2__
#include <immintrin.h>
#endif

namespace vort {

namespace plane_body {

struct Halves {
    std::uint64_t low, high;  // 32 bits each
};

template <Instructions kInstructions>
[[gnu::always_inline]] inline std::uint64_t swapped(std::uint64_t word, std::uint64_t inner,
                                                    int by) {
    const std::uint64_t change = (word ^ word >> by) & inner;
    return word ^ change ^ change << by;
}

template <Instructions kInstructions>
[[gnu::always_inline]] inline Halves apart(std::uint64_t word) {
#ifdef __BMI2__
    return {_pext_u64(word, 0x5555555555555555), _pext_u64(word, 0xAAAAAAAAAAAAAAAA)};
#else
    word = swapped<kInstructions>(word, 0x2222222222222222, 1);
    word = swapped<kInstructions>(word, 0x0C0C0C0C0C0C0C0C, 2);
    word = swapped<kInstructions>(word, 0x00F000F000F000F0, 4);
    word = swapped<kInstructions>(word, 0x0000FF000000FF00, 8);
    word = swapped<kInstructions>(word, 0x00000000FFFF0000, 16);
    return {word & 0xFFFFFFFF, word >> 32};
#endif
}

// The planes' words of the individuals of `bits` that are in `present`.
template <Instructions kInstructions>
[[gnu::always_inline]] inline void word_of_planes(const std::uint64_t (&bits)[2],
                                                  std::uint64_t present, std::size_t w,
                                                  const GenotypePlanes& out) {
    const Halves first = apart<kInstructions>(bits[0]);
    const Halves second = apart<kInstructions>(bits[1]);
    const std::uint64_t low = first.low | second.low << 32;
    const std::uint64_t high = first.high | second.high << 32;
    out.one[w] = high & ~low & present;
    out.two[w] = ~(high | low) & present;
    out.missing[w] = low & ~high & present;
}

}  // namespace plane_body

template <Instructions kInstructions>
void PlaneKernel<kInstructions>::planes(const unsigned char* column, int individuals,
                                        const GenotypePlanes& out) {
    const std::size_t whole = static_cast<std::size_t>(individuals) / 64;
    std::uint64_t bits[2];
    for (std::size_t w = 0; w < whole; ++w) {
        std::memcpy(bits, column + w * sizeof bits, sizeof bits);
        plane_body::word_of_planes<kInstructions>(bits, ~std::uint64_t{0}, w, out);
    }
    const int rest = individuals % 64;
    if (rest == 0) return;
    bits[0] = bits[1] = 0;
    std::memcpy(bits, column + whole * sizeof bits, (static_cast<std::size_t>(rest) + 3) / 4);
    plane_body::word_of_planes<kInstructions>(bits, (std::uint64_t{1} << rest) - 1, whole, out);
}

}  // namespace vort
