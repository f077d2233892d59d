// The five-model statistics of a block of markers, several at a time.
#pragma once

#include "numeric/instructions.h"

namespace vort {

constexpr int kMarkerBlock = 128;  // a multiple of every register's doubles

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

}  // namespace vort
