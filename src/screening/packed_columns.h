// How the three case counts of a column share an int; see counted_data_sets.h.
#pragma once

namespace vort {

// One element for each column: its counts over everybody, and the bits at which the number of cases
// with genotype 2, and that of cases with a missing genotype, begin; genotype 1 begins at bit 0.
struct PackedColumns {
    const int* one;
    const int* two;
    const int* missing;
    const unsigned char* two_from;
    const unsigned char* missing_from;
};

}  // namespace vort
