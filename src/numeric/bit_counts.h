// Words of bits side by side, and how many bits of each are set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "numeric/instructions.h"

#if defined(__AVX512VPOPCNTDQ__)
#include <immintrin.h>
#endif

namespace vort {

template <Instructions kInstructions, std::size_t kSize>
struct BitWords {
    static constexpr std::size_t kWords = kSize;
    using Words [[gnu::vector_size(8 * kSize)]] = std::uint64_t;

    [[gnu::always_inline]] static Words load(const std::uint64_t* from) {
        Words words;
        std::memcpy(&words, from, sizeof words);
        return words;
    }

    // Of every word.
    [[gnu::always_inline]] static Words counts(const Words& words) {
#if defined(__AVX512VPOPCNTDQ__)
        if constexpr (kSize == 8) {
            return reinterpret_cast<Words>(_mm512_popcnt_epi64(reinterpret_cast<__m512i>(words)));
        }
#endif
        Words counts;
        for (std::size_t w = 0; w < kSize; ++w) {
            counts[w] = static_cast<std::uint64_t>(__builtin_popcountll(words[w]));
        }
        return counts;
    }

    [[gnu::always_inline]] static std::uint64_t sum(const Words& words) {
        if constexpr (kSize == 8) {
            using Half [[gnu::vector_size(32)]] = std::uint64_t;
            using Quarter [[gnu::vector_size(16)]] = std::uint64_t;
            const Half half = __builtin_shufflevector(words, words, 0, 1, 2, 3) +
                              __builtin_shufflevector(words, words, 4, 5, 6, 7);
            const Quarter quarter = __builtin_shufflevector(half, half, 0, 1) +
                                    __builtin_shufflevector(half, half, 2, 3);
            return quarter[0] + quarter[1];
        } else {
            std::uint64_t sum = 0;
            for (std::size_t w = 0; w < kSize; ++w) sum += words[w];
            return sum;
        }
    }
};

// As many words as one instruction counts.
template <Instructions kInstructions>
struct BitRegister : BitWords<kInstructions, 1> {};
template <>
struct BitRegister<Instructions::kWidest> : BitWords<Instructions::kWidest, 8> {};

}  // namespace vort
