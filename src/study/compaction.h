// Genotypes without the individuals and markers that are left out.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "genotypes/genotypes.h"

namespace vort {

// Consecutive individuals.
struct Run {
    std::size_t from;
    std::size_t size;
};

// The runs that ascending numbers fall into.
std::vector<Run> runs_of(std::span<const int> rows);

// Packs the runs of a column into `out`, whose padding becomes zeros.
void pack_runs(std::span<const unsigned char> column, std::span<const Run> runs,
               std::span<unsigned char> out);

// The given rows (ascending) and columns (in any order), in memory of their own.
Genotypes copied(const Genotypes& all, std::span<const int> rows, std::span<const int> columns,
                 int threads);

// The given rows (ascending) and columns (in any order) alone. What is left as it was is not
// copied; owned genotypes are packed where they lie, those of a file into memory of their own.
Genotypes compacted(Genotypes genotypes, std::span<const int> rows, std::span<const int> columns,
                    int threads);

}  // namespace vort
