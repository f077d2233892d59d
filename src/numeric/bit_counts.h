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

// As many words as one instruction counts.
template <Instructions kInstructions>
struct BitRegister {
    static constexpr std::size_t kWords = 1;
    using Words = std::uint64_t;

    [[gnu::always_inline]] static Words load(const std::uint64_t* from) { return *from; }

    // Of every word.
    [[gnu::always_inline]] static Words counts(const Words& words) {
        return static_cast<std::uint64_t>(__builtin_popcountll(words));
    }

    [[gnu::always_inline]] static std::uint64_t sum(const Words& words) { return words; }
};

#if defined(__AVX512VPOPCNTDQ__)
template <>
struct BitRegister<Instructions::kWidest> {
    static constexpr std::size_t kWords = 8;
    using Words [[gnu::vector_size(64)]] = std::uint64_t;
    using Half [[gnu::vector_size(32)]] = std::uint64_t;
    using Quarter [[gnu::vector_size(16)]] = std::uint64_t;

    [[gnu::always_inline]] static Words load(const std::uint64_t* from) {
        Words words;
        std::memcpy(&words, from, sizeof words);
        return words;
    }

    [[gnu::always_inline]] static Words counts(const Words& words) {
        return reinterpret_cast<Words>(_mm512_popcnt_epi64(reinterpret_cast<__m512i>(words)));
    }

    [[gnu::always_inline]] static std::uint64_t sum(const Words& words) {
        const Half half = __builtin_shufflevector(words, words, 0, 1, 2, 3) +
                          __builtin_shufflevector(words, words, 4, 5, 6, 7);
        const Quarter quarter =
            __builtin_shufflevector(half, half, 0, 1) + __builtin_shufflevector(half, half, 2, 3);
        return quarter[0] + quarter[1];
    }
};
#endif

}  // namespace vort
