// The body of DrawKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/draw_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace drawing {

// A register of counts: those of one or of two words in all lanes.
template <Instructions kInstructions>
struct Counts;

template <>
struct Counts<Instructions::kPortable> {
    using Type [[gnu::vector_size(16)]] = std::int16_t;
    static constexpr int kWords = 1;

    // A position for each lane, once for each word.
    [[gnu::always_inline]] static void load(const std::int16_t* from, Type& to) {
        std::memcpy(&to, from, sizeof to);
    }
};

template <>
struct Counts<Instructions::kWide> {
    using Type [[gnu::vector_size(32)]] = std::int16_t;
    static constexpr int kWords = 2;

    [[gnu::always_inline]] static void load(const std::int16_t* from, Type& to) {
        Counts<Instructions::kPortable>::Type once;
        std::memcpy(&once, from, sizeof once);
        to = __builtin_shufflevector(once, once, 0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7);
    }
};

// Four words at once gain nothing: the rest of a draw takes longer.
template <>
struct Counts<Instructions::kWidest> : Counts<Instructions::kWide> {};

}  // namespace drawing

template <Instructions kInstructions>
void DrawKernel<kInstructions>::positions(const double* x, const double* y, const double* z,
                                          int size, int left, int* out) {
    for (int c = 0; c < size; ++c) {
        const double sum = x[c] + y[c] + z[c];
        const double u = sum - static_cast<int>(sum);
        out[c] = static_cast<int>((left - c) * u);
    }
}

template <Instructions kInstructions>
void DrawKernel<kInstructions>::labels(const std::int16_t* positions, std::size_t n,
                                       const LabelState& state, const double* value, double* out) {
    using Register = typename drawing::Counts<kInstructions>::Type;
    constexpr int kWords = drawing::Counts<kInstructions>::kWords;
    std::int16_t* const first_end = state.ends + kLanes;
    std::int16_t* const last_end = first_end + state.words * kLanes;
    for (std::size_t c = 0; c < n; ++c, positions += kLanes, out += kLanes) {
        Register position;
        drawing::Counts<kInstructions>::load(positions, position);
        Register above{};  // -1 for each end above the position
        for (std::int16_t* end = first_end; end < last_end; end += kWords * kLanes) {
            Register ends;
            std::memcpy(&ends, end, sizeof ends);
            const Register behind = ends > position;
            ends += behind;
            std::memcpy(end, &ends, sizeof ends);
            above += behind;
        }
        std::int16_t passed[kWords * kLanes];
        std::memcpy(passed, &above, sizeof above);
        for (int l = 0; l < kLanes; ++l) {
            int w = state.words;
            for (int part = 0; part < kWords; ++part) w += passed[part * kLanes + l];
            const int bit = positions[l] - state.ends[w * kLanes + l];
            std::uint64_t& word = state.word[w * kLanes + l];
            const std::uint64_t from_here = word >> bit;
            const std::uint64_t before = word & ((std::uint64_t{1} << bit) - 1);
            word = before | from_here >> 1 << bit;
            out[l] = value[from_here & 1];
        }
    }
}

}  // namespace vort
