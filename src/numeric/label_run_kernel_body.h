// The body of LabelRunKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/draw_kernel_body.h"
#include "numeric/label_run_kernel.h"

namespace vort {

namespace label_runs {

// A register of ints, one for each of kSize orders.
template <Instructions kInstructions>
struct OrderLanes;

template <>
struct OrderLanes<Instructions::kPortable> {
    static constexpr int kSize = 4;
    using Ints [[gnu::vector_size(16)]] = int;

    // Elements of a and b in turn, of their first and of their second halves.
    [[gnu::always_inline]] static void zip(Ints& a, Ints& b) {
        const Ints first = __builtin_shufflevector(a, b, 0, 4, 1, 5);
        b = __builtin_shufflevector(a, b, 2, 6, 3, 7);
        a = first;
    }
};

template <>
struct OrderLanes<Instructions::kWide> {
    static constexpr int kSize = 8;
    using Ints [[gnu::vector_size(32)]] = int;

    [[gnu::always_inline]] static void zip(Ints& a, Ints& b) {
        const Ints first = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
        b = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
        a = first;
    }
};

template <>
struct OrderLanes<Instructions::kWidest> {
    static constexpr int kSize = 16;
    using Ints [[gnu::vector_size(64)]] = int;

    [[gnu::always_inline]] static void zip(Ints& a, Ints& b) {
        const Ints first =
            __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
        b = __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                    31);
        a = first;
    }
};

// One word of labels of a register's orders, from positions in rows of 64.
template <Instructions kInstructions>
struct OrderBlock {
    using Types = OrderLanes<kInstructions>;
    using Ints = typename Types::Ints;
    static constexpr int kSize = Types::kSize;
    static constexpr int kDraws = 64;

    int row[kSize][kDraws];

    // Rows become columns: column[c] holds the orders' positions of the draw first + c.
    [[gnu::always_inline]] void columns(int first, Ints (&column)[kSize]) const {
        for (int r = 0; r < kSize; ++r) std::memcpy(&column[r], &row[r][first], sizeof(Ints));
        for (int step = 1; step < kSize; step *= 2) {
            Ints next[kSize];
            for (int r = 0; r < kSize / 2; ++r) {
                next[2 * r] = column[r];
                next[2 * r + 1] = column[r + kSize / 2];
                Types::zip(next[2 * r], next[2 * r + 1]);
            }
            std::memcpy(column, next, sizeof next);
        }
    }

    // Draws 32 labels of each order; the first becomes the lowest bit. An end that is above the
    // position makes a difference below 0, and the number of such ends is odd for a label of 1.
    [[gnu::always_inline]] Ints half(int first, Ints (&end)[LabelRunLanes::kEnds]) const {
        constexpr int kSignBit = static_cast<int>(0x80000000);
        using Bits [[gnu::vector_size(sizeof(Ints))]] = unsigned;
        Bits labels{};
        for (int c = first; c < first + kDraws / 2; c += kSize) {
            Ints column[kSize];
            columns(c, column);
            for (int k = 0; k < kSize; ++k) {
                Ints odd{};
                for (Ints& e : end) {
                    const Ints behind = column[k] - e;
                    e += behind >> 31;
                    odd ^= behind;
                }
                labels = labels >> 1 | reinterpret_cast<Bits>(odd & kSignBit);
            }
        }
        return reinterpret_cast<Ints>(labels);
    }
};

}  // namespace label_runs

template <Instructions kInstructions>
void LabelRunKernel<kInstructions>::draw(LabelRunLanes& lanes, int orders, int left, int count,
                                         const LabelPlanes& out) {
    using OrderBlock = label_runs::OrderBlock<kInstructions>;
    using Ints = typename OrderBlock::Ints;
    for (int lane = 0; lane < orders; lane += OrderBlock::kSize) {
        Ints end[LabelRunLanes::kEnds];
        for (int e = 0; e < LabelRunLanes::kEnds; ++e) {
            std::memcpy(&end[e], lanes.ends[e] + lane, sizeof end[e]);
        }
        for (int w = 0; w < count; ++w) {
            const int done = w * OrderBlock::kDraws;
            OrderBlock block;
            for (int r = 0; r < OrderBlock::kSize; ++r) {
                const Generator::Stretch& from = lanes.from[lane + r];
                drawing::positions<kInstructions>({from.x + done, from.y + done, from.z + done},
                                                  OrderBlock::kDraws, left - done, block.row[r]);
            }
            const Ints low = block.half(0, end);
            const Ints high = block.half(OrderBlock::kDraws / 2, end);
            for (int r = 0; r < OrderBlock::kSize && lane + r < orders; ++r) {
                out.words[(lane + r) * out.stride + w] =
                    static_cast<std::uint64_t>(static_cast<unsigned>(high[r])) << 32 |
                    static_cast<unsigned>(low[r]);
            }
        }
        for (int e = 0; e < LabelRunLanes::kEnds; ++e) {
            std::memcpy(lanes.ends[e] + lane, &end[e], sizeof end[e]);
        }
    }
}

}  // namespace vort
