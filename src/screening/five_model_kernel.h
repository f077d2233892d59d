// The five-model statistics of a block of markers, eight at a time.
//
// Included by the sources that compile the kernel, once for each set of instructions.
#pragma once

#include <cstring>

#include "numeric/instructions.h"
#include "numeric/lanes.h"
#include "screening/five_model_statistics.h"

namespace vort {

constexpr int kMarkerBlock = 128;  // a multiple of kLanes

// One array for each field of GenotypeTable and of ModelStatistics, one element for each marker.
struct TableBlock {
    using Row = double[kMarkerBlock];
    Row a0, a1, a2, b0, b1, b2, R, S;
};
struct StatisticsBlock {
    using Row = double[kMarkerBlock];
    Row additive, dominant, recessive, genotype, classes;
};

template <Instructions kInstructions>
struct FiveModelKernel {
    static void statistics(const TableBlock& in, StatisticsBlock& out);
};

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
