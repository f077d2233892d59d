// The body of CountKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/bit_counts.h"
#include "screening/count_kernel.h"

namespace vort {

namespace counting {

constexpr int kFieldBits = 21;
constexpr std::uint64_t kField = (std::uint64_t{1} << kFieldBits) - 1;

// The counts of one column among the cases of kSets data sets.
template <Instructions kInstructions, int kSets>
[[gnu::always_inline]] inline void count_column(const std::uint64_t* column,
                                                std::size_t column_distance,
                                                const std::uint64_t* cases,
                                                std::size_t case_distance, std::size_t words,
                                                PlaneCounts* out, std::size_t out_distance) {
    using Bits = BitRegister<kInstructions>;
    typename Bits::Words ones[kSets] = {};
    typename Bits::Words twos[kSets] = {};
    typename Bits::Words missings[kSets] = {};
    for (std::size_t w = 0; w < words; w += Bits::kWords) {
        const auto one = Bits::load(column + w);
        const auto two = Bits::load(column + column_distance + w);
        const auto missing = Bits::load(column + 2 * column_distance + w);
        for (int d = 0; d < kSets; ++d) {
            const auto wanted = Bits::load(cases + d * case_distance + w);
            ones[d] += Bits::counts(one & wanted);
            twos[d] += Bits::counts(two & wanted);
            missings[d] += Bits::counts(missing & wanted);
        }
    }
    for (int d = 0; d < kSets; ++d) {
        const std::uint64_t all =
            Bits::sum(ones[d] | twos[d] << kFieldBits | missings[d] << 2 * kFieldBits);
        PlaneCounts& counts = out[d * out_distance];
        counts.one += static_cast<int>(all & kField);
        counts.two += static_cast<int>(all >> kFieldBits & kField);
        counts.missing += static_cast<int>(all >> 2 * kFieldBits);
    }
}

}  // namespace counting

template <Instructions kInstructions>
void CountKernel<kInstructions>::count(const PlaneRows& columns, const PlaneRows& cases,
                                       std::size_t words, PlaneCounts* out,
                                       std::size_t out_distance) {
    constexpr int kAtOnce = 4;
    for (int c = 0; 3 * c < columns.count; ++c) {
        const std::uint64_t* const column = columns.words + 3 * c * columns.distance;
        int d = 0;
        for (; d + kAtOnce <= cases.count; d += kAtOnce) {
            counting::count_column<kInstructions, kAtOnce>(
                column, columns.distance, cases.words + d * cases.distance, cases.distance, words,
                out + d * out_distance + c, out_distance);
        }
        for (; d < cases.count; ++d) {
            counting::count_column<kInstructions, 1>(
                column, columns.distance, cases.words + d * cases.distance, cases.distance, words,
                out + d * out_distance + c, out_distance);
        }
    }
}

}  // namespace vort
