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

    // The counts of the first and of the last word of a register.
    [[gnu::always_inline]] static Lanes first(const Type& counts) { return counts; }
    [[gnu::always_inline]] static Lanes last(const Type&) { return Lanes{}; }
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

    [[gnu::always_inline]] static Lanes first(const Type& counts) {
        return __builtin_shufflevector(counts, counts, 0, 1, 2, 3, 4, 5, 6, 7);
    }
    [[gnu::always_inline]] static Lanes last(const Type& counts) {
        return __builtin_shufflevector(counts, counts, 8, 9, 10, 11, 12, 13, 14, 15);
    }
};

// Four words at once gain nothing; LabelLanes does not ask for them.
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

namespace drawing {

// Where the items of a few draws are: the word, as its place among all lanes' words, and the bit.
struct Places {
    static constexpr std::size_t kDraws = 32;

    std::uint16_t word[kDraws * kLanes];
    std::uint16_t bit[kDraws * kLanes];
};

// Finds the items, and moves the ends of the words as if they had been taken.
template <Instructions kInstructions>
[[gnu::always_inline]] inline void find_items(const std::int16_t* positions, std::size_t draws,
                                              const LabelState& state, Places& out) {
    using Counts = drawing::Counts<kInstructions>;
    using Register = typename Counts::Type;
    std::int16_t* const last_end = state.ends + state.words * kLanes;
    const auto words = static_cast<std::int16_t>(state.words);
    for (std::size_t c = 0; c < draws; ++c) {
        Register position;
        Counts::load(positions + c * kLanes, position);
        Register above{};   // -1 for each end above the position
        Register before{};  // the last end that is not
        for (std::int16_t* at = state.ends; at < last_end; at += Counts::kWords * kLanes) {
            Register end;
            std::memcpy(&end, at, sizeof end);
            const Register behind = end > position;
            before = behind ? before : end;
            above += behind;
            end += behind;
            std::memcpy(at, &end, sizeof end);
        }
        const Lanes one = Counts::first(before);
        const Lanes other = Counts::last(before);
        const Lanes bit = Counts::first(position) - (one > other ? one : other);
        const Lanes word = Counts::first(above) + Counts::last(above) + words;
        const Lanes place = word * kLanes + kLane;
        std::memcpy(out.bit + c * kLanes, &bit, sizeof bit);
        std::memcpy(out.word + c * kLanes, &place, sizeof place);
    }
}

// Takes the item at a bit of a word; returns its label.
[[gnu::always_inline]] inline std::uint64_t take(std::uint64_t& word, int bit) {
    const std::uint64_t from_here = word >> bit;
    const std::uint64_t before = word & ((std::uint64_t{1} << bit) - 1);
    word = before | from_here >> 1 << bit;
    return from_here & 1;
}

}  // namespace drawing

// Finding an item takes many steps, each waiting for the one before, so that the items of several
// draws are found before any is taken: the draws then overlap.
template <Instructions kInstructions>
void DrawKernel<kInstructions>::labels(const std::int16_t* positions, std::size_t n,
                                       const LabelState& state, unsigned char* out) {
    drawing::Places places;
    for (std::size_t first = 0; first < n; first += drawing::Places::kDraws) {
        const std::size_t draws = n - first < drawing::Places::kDraws ? n - first : places.kDraws;
        drawing::find_items<kInstructions>(positions + first * kLanes, draws, state, places);
        for (std::size_t c = 0; c < draws; ++c) {
            std::uint64_t taken = 0;
            for (std::size_t l = 0; l < kLanes; ++l) {
                const std::size_t k = c * kLanes + l;
                taken |= drawing::take(state.word[places.word[k]], places.bit[k]) << l;
            }
            out[first + c] = static_cast<unsigned char>(taken);
        }
    }
}

}  // namespace vort
