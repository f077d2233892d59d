// Counting the cases of many data sets among the individuals of a column's planes.
//
// Data sets differ in who is a case, not in the genotypes. The planes of a column (individuals with
// genotype 1, with genotype 2, missing) are combined with each data set's plane of cases, word by
// word, and the bits counted; controls follow by subtraction. Four data sets share each look at a
// column, and a stretch of at most kCountedWords words is counted at a time, so that the planes of
// sixteen data sets stay in the first cache whatever the number of individuals.
//
// Cost: three bits for each individual, marker and data set; some 4 ns for 1,000 individuals.
#pragma once

#include <cstddef>
#include <cstdint>

#include "numeric/instructions.h"

namespace vort {

// Individuals of one group with genotype 1, with genotype 2, and without a genotype.
struct PlaneCounts {
    int one;
    int two;
    int missing;
};

constexpr std::size_t kCountedWords =
    192;                               // at most, at a time; the counts of one call have 21 bits
constexpr std::size_t kWordBlock = 8;  // planes have a multiple of so many words

// A stretch of words of planes that lie one after the other.
struct PlaneRows {
    const std::uint64_t* words;  // where the stretch begins in the first plane
    std::size_t distance;        // words from the beginning of a plane to that of the next
    int count;                   // planes; of columns: three for each
};

template <Instructions kInstructions>
struct CountKernel {
    // Adds to out[d * out_distance + c] the counts of column c (planes 3c, 3c + 1 and 3c + 2)
    // among the cases of data set d, over `words` words (a multiple of kWordBlock).
    static void count(const PlaneRows& columns, const PlaneRows& cases, std::size_t words,
                      PlaneCounts* out, std::size_t out_distance);
};

}  // namespace vort
