// The body of CellSumKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "csm/cell_sum_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace cell_sum {

constexpr std::int64_t kLaneBit[kLanes] = {1, 2, 4, 8, 16, 32, 64, 128};

// kLanes doubles in registers.
template <Instructions kInstructions>
struct Row {
    using Types = Register<kInstructions>;
    static constexpr int kRegisters = kLanes / Types::kSize;

    [[gnu::always_inline]] void load(const double* from) {
        for (int v = 0; v < kRegisters; ++v) {
            std::memcpy(&part[v], from + v * Types::kSize, sizeof part[v]);
        }
    }
    [[gnu::always_inline]] void store(double* to) const { std::memcpy(to, part, sizeof part); }

    // The lanes of `one` where the label has a bit, and of `zero` elsewhere.
    [[gnu::always_inline]] void add(unsigned char label, const Row& zero, const Row& one) {
        for (int v = 0; v < kRegisters; ++v) {
            typename Types::Mask bit;
            std::memcpy(&bit, kLaneBit + v * Types::kSize, sizeof bit);
            const typename Types::Mask set = (bit & static_cast<std::int64_t>(label)) != 0;
            part[v] += select(set, one.part[v], zero.part[v]);
        }
    }

    typename Types::Doubles part[kRegisters];
};

}  // namespace cell_sum

template <Instructions kInstructions>
void CellSumKernel<kInstructions>::mean(const PermutedPhenotype& phenotype, const int* member,
                                        int members, double* mean) {
    using Row = cell_sum::Row<kInstructions>;
    Row zero{};
    Row one{};
    for (auto& part : zero.part) part += phenotype.value[0];
    for (auto& part : one.part) part += phenotype.value[1];
    Row total{};
    for (int k = 0; k < members; ++k) total.add(phenotype.label[member[k]], zero, one);
    for (auto& part : total.part) part /= static_cast<double>(members);
    total.store(mean);
}

template <Instructions kInstructions>
void CellSumKernel<kInstructions>::sums(const PermutedPhenotype& phenotype, const int* by_cell,
                                        const int* cell_count, int ncell, const double* mean,
                                        double* sum) {
    using Row = cell_sum::Row<kInstructions>;
    Row zero;
    zero.load(mean);
    Row one = zero;
    for (auto& part : zero.part) part = phenotype.value[0] - part;
    for (auto& part : one.part) part = phenotype.value[1] - part;
    for (int c = 1; c <= ncell; ++c) {
        Row total{};
        for (const int* const end = by_cell + cell_count[c]; by_cell < end; ++by_cell) {
            total.add(phenotype.label[*by_cell], zero, one);
        }
        total.store(sum + c * kLanes);
    }
}

}  // namespace vort
