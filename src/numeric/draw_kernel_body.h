// The body of DrawKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/draw_kernel.h"

#ifdef __BMI2__
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

// The starts of a node, in as many registers as they need.
template <Instructions kInstructions>
struct Starts {
    static constexpr int kSize = kInstructions == Instructions::kPortable ? 4 : 8;
    static constexpr int kRegisters = ItemTree::kChildren / kSize;
    using Ints [[gnu::vector_size(sizeof(int) * kSize)]] = int;

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
        for (int r = 1; r < kRegisters; ++r) above[0] += above[r];
        int sum = ItemTree::kChildren - 1;
        for (int i = 0; i < kSize; ++i) sum += above[0][i];
        return sum;
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
    for (int c = 0; c < n; ++c) {
        int k = item[c];
        std::size_t node = 0;
        for (int l = tree.levels - 1; l >= 0; --l) {
            int* const starts = tree.starts[l] + node * ItemTree::kChildren;
            const int child = drawing::Starts<kInstructions>::take(starts, k);
            k -= starts[child];
            node = node * ItemTree::kChildren + child;
        }
        const int bit = drawing::place_of_bit<kInstructions>(tree.words[node], k);
        tree.words[node] ^= std::uint64_t{1} << bit;
        item[c] = static_cast<int>(node * 64 + bit);
    }
}

}  // namespace vort
