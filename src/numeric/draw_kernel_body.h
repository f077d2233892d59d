// The body of DrawKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/draw_kernel.h"

#ifdef __AVX2__
#include <immintrin.h>
#endif

namespace vort {

namespace drawing {

// The loop is one of doubles side by side; the whole part of a number below 3 is that of an int.
template <Instructions kInstructions>
[[gnu::always_inline]] inline void positions(const Generator::Stretch& from, int size, int left,
                                             int* __restrict out) {
    for (int c = 0; c < size; ++c) {
        const double sum = from.x[c] + from.y[c] + from.z[c];
        const double u = sum - static_cast<int>(sum);
        out[c] = static_cast<int>((left - c) * u);
    }
}

// How many of eight running counts, a byte each, are not above k.
[[gnu::always_inline]] inline int bytes_up_to(std::uint64_t counts, std::uint64_t k) {
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    constexpr std::uint64_t kHighs = 0x8080808080808080;
    const std::uint64_t not_above = ((k * kOnes | kHighs) - counts) & kHighs;
    return static_cast<int>((not_above >> 7) * kOnes >> 56);
}

// The place of the k-th bit set (from 0).
template <Instructions kInstructions>
[[gnu::always_inline]] inline int place_of_bit(std::uint64_t word, int k) {
#ifdef __BMI2__
    return __builtin_ctzll(_pdep_u64(std::uint64_t{1} << k, word));
#else
    constexpr std::uint64_t kOnes = 0x0101010101010101;
    std::uint64_t counts = word - (word >> 1 & 0x5555555555555555);
    counts = (counts & 0x3333333333333333) + (counts >> 2 & 0x3333333333333333);
    counts = ((counts + (counts >> 4)) & 0x0F0F0F0F0F0F0F0F) * kOnes;
    const int byte = 8 * bytes_up_to(counts, static_cast<std::uint64_t>(k));
    const int before = static_cast<int>((counts << 8) >> byte & 0xFF);
    // The bits of the byte, one in each of eight.
    const std::uint64_t bits = (word >> byte & 0xFF) * kOnes & 0x8040201008040201;
    const std::uint64_t each = ((bits + 0x7F7F7F7F7F7F7F7F) | bits) >> 7 & kOnes;
    return byte + bytes_up_to(each * kOnes, static_cast<std::uint64_t>(k - before));
#endif
}

template <Instructions kInstructions>
struct StartRegister;

template <>
struct StartRegister<Instructions::kPortable> {
    using Ints [[gnu::vector_size(16)]] = int;
};

template <>
struct StartRegister<Instructions::kWide> {
    using Ints [[gnu::vector_size(32)]] = int;
};

// One register for a whole node takes longer than two, which are stored and loaded again sooner.
template <>
struct StartRegister<Instructions::kWidest> : StartRegister<Instructions::kWide> {};

// The starts of a node, in as many registers as they need.
template <Instructions kInstructions>
struct Starts {
    using Ints = typename StartRegister<kInstructions>::Ints;
    static constexpr int kSize = sizeof(Ints) / sizeof(int);
    static constexpr int kRegisters = ItemTree::kChildren / kSize;

    // How many of all elements are -1, where the others are 0.
    [[gnu::always_inline]] static int count(const Ints (&flags)[kRegisters]) {
#ifdef __AVX2__
        const auto packed = _mm256_packs_epi32(reinterpret_cast<__m256i>(flags[0]),
                                               reinterpret_cast<__m256i>(flags[1]));
        return __builtin_popcount(_mm256_movemask_epi8(packed)) / 2;
#else
        Ints sums{};
        for (const Ints& each : flags) sums -= each;
        int sum = 0;
        for (int i = 0; i < kSize; ++i) sum += sums[i];
        return sum;
#endif
    }

    // The child that holds the k-th item, which is taken from those behind.
    [[gnu::always_inline]] static int take(int* starts, int k) {
        Ints above[kRegisters];
        for (int r = 0; r < kRegisters; ++r) {
            Ints start;
            std::memcpy(&start, starts + r * kSize, sizeof start);
            above[r] = start > k;
            start += above[r];
            std::memcpy(starts + r * kSize, &start, sizeof start);
        }
        return ItemTree::kChildren - 1 - count(above);
    }
};

}  // namespace drawing

template <Instructions kInstructions>
void DrawKernel<kInstructions>::positions(const Generator::Stretch& from, int size, int left,
                                          int* out) {
    drawing::positions<kInstructions>(from, size, left, out);
}

template <Instructions kInstructions>
void DrawKernel<kInstructions>::take_items(const ItemTree& tree, int n, int* item) {
    int node[Generator::kStretch] = {};  // where each draw has come to, on the level
    for (int l = tree.levels - 1; l >= 0; --l) {
        for (int c = 0; c < n; ++c) {
            int* const starts = tree.nodes[l][node[c]].start;
            const int child = drawing::Starts<kInstructions>::take(starts, item[c]);
            item[c] -= starts[child];
            node[c] = node[c] * ItemTree::kChildren + child;
        }
    }
    for (int c = 0; c < n; ++c) {
        std::uint64_t& word = tree.words[node[c]];
        const int bit = drawing::place_of_bit<kInstructions>(word, item[c]);
        word ^= std::uint64_t{1} << bit;
        item[c] = node[c] * ItemTree::kBits + bit;
    }
}

}  // namespace vort
