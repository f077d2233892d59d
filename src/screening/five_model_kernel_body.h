// The body of FiveModelKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/lanes.h"
#include "screening/five_model_kernel.h"
#include "screening/five_model_statistics.h"

namespace vort {

template <Instructions kInstructions>
void FiveModelKernel<kInstructions>::statistics(const TableBlock& in, StatisticsBlock& out) {
    using Doubles = typename Register<kInstructions>::Doubles;
    constexpr std::size_t kBytes = sizeof(Doubles);
    for (int first = 0; first < kMarkerBlock; first += Register<kInstructions>::kSize) {
        GenotypeTable<Doubles> table;
        std::memcpy(&table.a0, in.a0 + first, kBytes);
        std::memcpy(&table.a1, in.a1 + first, kBytes);
        std::memcpy(&table.a2, in.a2 + first, kBytes);
        std::memcpy(&table.b0, in.b0 + first, kBytes);
        std::memcpy(&table.b1, in.b1 + first, kBytes);
        std::memcpy(&table.b2, in.b2 + first, kBytes);
        std::memcpy(&table.R, in.R + first, kBytes);
        std::memcpy(&table.S, in.S + first, kBytes);
        ModelStatistics<Doubles> statistics;
        five_model_statistics<Doubles>(table, statistics);
        std::memcpy(out.additive + first, &statistics.additive, kBytes);
        std::memcpy(out.dominant + first, &statistics.dominant, kBytes);
        std::memcpy(out.recessive + first, &statistics.recessive, kBytes);
        std::memcpy(out.genotype + first, &statistics.genotype, kBytes);
        std::memcpy(out.classes + first, &statistics.classes, kBytes);
    }
}

}  // namespace vort
