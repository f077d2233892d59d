// The body of FiveModelKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/lanes.h"
#include "screening/five_model_kernel.h"
#include "screening/five_model_statistics.h"

namespace vort {

template <Instructions kInstructions>
void FiveModelKernel<kInstructions>::statistics(const TableBlock& in, StatisticsBlock& out) {
    for (int first = 0; first < kMarkerBlock; first += kLanes) {
        GenotypeTable<Lanes> table;
        std::memcpy(&table.a0, in.a0 + first, sizeof(Lanes));
        std::memcpy(&table.a1, in.a1 + first, sizeof(Lanes));
        std::memcpy(&table.a2, in.a2 + first, sizeof(Lanes));
        std::memcpy(&table.b0, in.b0 + first, sizeof(Lanes));
        std::memcpy(&table.b1, in.b1 + first, sizeof(Lanes));
        std::memcpy(&table.b2, in.b2 + first, sizeof(Lanes));
        std::memcpy(&table.R, in.R + first, sizeof(Lanes));
        std::memcpy(&table.S, in.S + first, sizeof(Lanes));
        ModelStatistics<Lanes> statistics;
        five_model_statistics<Lanes>(table, statistics);
        std::memcpy(out.additive + first, &statistics.additive, sizeof(Lanes));
        std::memcpy(out.dominant + first, &statistics.dominant, sizeof(Lanes));
        std::memcpy(out.recessive + first, &statistics.recessive, sizeof(Lanes));
        std::memcpy(out.genotype + first, &statistics.genotype, sizeof(Lanes));
        std::memcpy(out.classes + first, &statistics.classes, sizeof(Lanes));
    }
}

}  // namespace vort
