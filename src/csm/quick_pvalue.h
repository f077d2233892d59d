// The quick test of a marker set; see docs/method.md, section 3.
#pragma once

#include <cstddef>
#include <span>

#include "common/chi_square_tail.h"
#include "common/transcript.h"

namespace vort {

// Stands for a test that cannot be made: all individuals are in one cell, or in none.
constexpr double kUntestablePvalue = 0.5;

// The p-value of the spread of the cell means, from the sums of the centred phenotype over the
// cells and the cells' counts of individuals. n counts all individuals, also those in no cell;
// sigma is the variance of the phenotype over them.
inline double quick_pvalue(std::span<const double> cell_sum, std::span<const int> cell_count, int n,
                           double sigma, Transcript& transcript) {
    double total = 0;
    for (const double sum : cell_sum) total += sum;
    const double ybar = total / n;
    double S = 0;
    int seen = 0;
    for (std::size_t cell = 0; cell < cell_sum.size(); ++cell) {
        if (cell_count[cell] == 0) continue;
        const double deviation = cell_sum[cell] / cell_count[cell] - ybar;
        S += (deviation * deviation) * cell_count[cell];
        ++seen;
    }
    S = S / sigma;
    return seen < 2 ? kUntestablePvalue : chi_square_upper_tail(seen - 1, S, transcript);
}

}  // namespace vort
