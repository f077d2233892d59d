// The body of CellSumKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "csm/cell_sum_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace cell_sum {

// kLanes doubles in registers.
template <Instructions kInstructions>
struct Row {
    using Doubles = typename Register<kInstructions>::Doubles;
    static constexpr int kRegisters = kLanes / Register<kInstructions>::kSize;

    [[gnu::always_inline]] void load(const double* from) {
        for (int v = 0; v < kRegisters; ++v) {
            std::memcpy(&part[v], from + v * Register<kInstructions>::kSize, sizeof part[v]);
        }
    }
    [[gnu::always_inline]] void store(double* to) const { std::memcpy(to, part, sizeof part); }

    Doubles part[kRegisters];
};

}  // namespace cell_sum

template <Instructions kInstructions>
void CellSumKernel<kInstructions>::mean(const double* phenotype, const int* member, int members,
                                        double* mean) {
    using Row = cell_sum::Row<kInstructions>;
    Row total{};
    for (int k = 0; k < members; ++k) {
        Row y;
        y.load(phenotype + static_cast<long>(member[k]) * kLanes);
        for (int v = 0; v < Row::kRegisters; ++v) total.part[v] += y.part[v];
    }
    for (int v = 0; v < Row::kRegisters; ++v) total.part[v] /= static_cast<double>(members);
    total.store(mean);
}

template <Instructions kInstructions>
void CellSumKernel<kInstructions>::sums(const double* phenotype, const int* by_cell,
                                        const int* cell_count, int ncell, const double* mean,
                                        double* sum) {
    using Row = cell_sum::Row<kInstructions>;
    Row centre;
    centre.load(mean);
    for (int c = 1; c <= ncell; ++c) {
        Row total{};
        for (const int* const end = by_cell + cell_count[c]; by_cell < end; ++by_cell) {
            Row y;
            y.load(phenotype + static_cast<long>(*by_cell) * kLanes);
            for (int v = 0; v < Row::kRegisters; ++v) total.part[v] += y.part[v] - centre.part[v];
        }
        total.store(sum + c * kLanes);
    }
}

}  // namespace vort
