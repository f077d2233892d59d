// A block of markers from genotype counts to five-model statistics, several at a time.
#pragma once

#include "numeric/instructions.h"
#include "screening/count_kernel.h"

namespace vort {

constexpr int kMarkerBlock = 64;  // a multiple of every register's doubles

// Cases and controls, those with a missing genotype included.
struct GroupSizes {
    int cases;
    int controls;
};

// One array for each field of GenotypeTable and of ModelStatistics, one element for each marker.
struct TableBlock {
    using Row = double[kMarkerBlock];
    Row a0, a1, a2, b0, b1, b2, R, S;
};
struct StatisticsBlock {
    using Row = double[kMarkerBlock];
    Row additive, dominant, recessive, genotype, classes;
};

// Of the statistics with one degree of freedom, the genotype statistic of a marker of two genotypes
// among them: the largest, and how many are so close to it, itself included, that their computed
// p-values may come in any order. kMargin of them, absolute and relative, is far beyond what the
// p-values are off.
struct LeadersBlock {
    using Row = double[kMarkerBlock];
    Row largest, close;
};
constexpr double kMargin = 1e-4;
template <typename Number>  // a double or a vector of them
[[gnu::always_inline]] constexpr Number lower_end_of_close(const Number& largest) {
    return largest - (kMargin + kMargin * largest);
}

struct MarkerBlock {
    TableBlock table;
    StatisticsBlock statistics;
    LeadersBlock leaders;
};

template <Instructions kInstructions>
struct FiveModelKernel {
    // Both arrays have kMarkerBlock elements: a column's counts over everybody, and over the cases.
    static void compute(const PlaneCounts* everybody, const PlaneCounts* cases, GroupSizes sizes,
                        MarkerBlock& out);
};

}  // namespace vort
