// The body of DrawKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/draw_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace drawing {

using Lanes [[gnu::vector_size(2 * kLanes)]] = std::int16_t;
constexpr Lanes kLane = {0, 1, 2, 3, 4, 5, 6, 7};

// A register of counts: those of one or of two words in all lanes.
template <Instructions kInstructions>
struct Counts;

template <>
struct Counts<Instructions::kPortable> {
    using Type = Lanes;
    static constexpr int kWords = 1;

    // A position for each lane, once for each word.
    [[gnu::always_inline]] static void load(const std::int16_t* from, Type& to) {
        std::memcpy(&to, from, sizeof to);
    }

    // The sum over the words of a register.
    [[gnu::always_inline]] static Lanes folded(const Type& counts) { return counts; }
};

template <>
struct Counts<Instructions::kWide> {
    using Type [[gnu::vector_size(32)]] = std::int16_t;
    static constexpr int kWords = 2;

    [[gnu::always_inline]] static void load(const std::int16_t* from, Type& to) {
        Lanes once;
        std::memcpy(&once, from, sizeof once);
        to = __builtin_shufflevector(once, once, 0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7);
    }

    [[gnu::always_inline]] static Lanes folded(const Type& counts) {
        return __builtin_shufflevector(counts, counts, 0, 1, 2, 3, 4, 5, 6, 7) +
               __builtin_shufflevector(counts, counts, 8, 9, 10, 11, 12, 13, 14, 15);
    }
};

// Four words at once gain nothing: the rest of a draw takes longer.
template <>
struct Counts<Instructions::kWidest> : Counts<Instructions::kWide> {};

// Elements 0 .. 7 of a and b in turn, of their first or of their second halves.
[[gnu::always_inline]] inline void zip(Lanes& a, Lanes& b) {
    const Lanes first = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
    b = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
    a = first;
}

// Rows become columns.
[[gnu::always_inline]] inline void transpose(Lanes (&row)[kLanes]) {
    for (int step = 0; step < 3; ++step) {
        Lanes next[kLanes];
        for (int r = 0; r < kLanes / 2; ++r) {
            next[2 * r] = row[r];
            next[2 * r + 1] = row[r + kLanes / 2];
            zip(next[2 * r], next[2 * r + 1]);
        }
        std::memcpy(row, next, sizeof next);
    }
}

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
void DrawKernel<kInstructions>::interleave(const int* rows, std::size_t n, std::int16_t* out) {
    std::size_t c = 0;
    for (; c + kLanes <= n; c += kLanes) {
        drawing::Lanes block[kLanes];
        for (int l = 0; l < kLanes; ++l) {
            for (int k = 0; k < kLanes; ++k) {
                block[l][k] = static_cast<std::int16_t>(rows[l * n + c + k]);
            }
        }
        drawing::transpose(block);
        for (int k = 0; k < kLanes; ++k) {
            std::memcpy(out + (c + k) * kLanes, &block[k], sizeof block[k]);
        }
    }
    for (; c < n; ++c) {
        for (int l = 0; l < kLanes; ++l) {
            out[c * kLanes + l] = static_cast<std::int16_t>(rows[l * n + c]);
        }
    }
}

template <Instructions kInstructions>
void DrawKernel<kInstructions>::labels(const std::int16_t* positions, std::size_t n,
                                       const LabelState& state, unsigned char* out) {
    using Counts = drawing::Counts<kInstructions>;
    using Register = typename Counts::Type;
    std::int16_t* const ends = state.ends;
    std::uint64_t* const words = state.word;
    std::int16_t* const first_end = ends + kLanes;
    std::int16_t* const last_end = first_end + state.words * kLanes;
    const auto all_words = static_cast<std::int16_t>(state.words);
    for (std::size_t c = 0; c < n; ++c, positions += kLanes) {
        Register position;
        Counts::load(positions, position);
        Register above{};  // -1 for each end above the position
        for (std::int16_t* end = first_end; end < last_end; end += Counts::kWords * kLanes) {
            Register end_of_word;
            std::memcpy(&end_of_word, end, sizeof end_of_word);
            const Register behind = end_of_word > position;
            end_of_word += behind;
            std::memcpy(end, &end_of_word, sizeof end_of_word);
            above += behind;
        }
        // Where the lane's word, and the end of the one before it, are to be found.
        const drawing::Lanes places = (Counts::folded(above) + all_words) * kLanes + drawing::kLane;
        std::uint64_t place[2];  // four lanes each
        std::memcpy(place, &places, sizeof place);
        std::uint64_t taken = 0;
        for (int l = 0; l < kLanes; ++l) {
            const std::size_t at = place[l / 4] >> (16 * (l % 4)) & 0xFFFF;
            const int bit = positions[l] - ends[at];
            const std::uint64_t word = words[at];
            const std::uint64_t from_here = word >> bit;
            const std::uint64_t before = word & ((std::uint64_t{1} << bit) - 1);
            words[at] = before | from_here >> 1 << bit;
            taken |= (from_here & 1) << l;
        }
        out[c] = static_cast<unsigned char>(taken);
    }
}

}  // namespace vort
