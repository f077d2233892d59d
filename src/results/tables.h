// The tables of a run beside markers.tsv, row by row.
#pragma once

#include <string>
#include <vector>

#include "results/marker_row.h"

namespace vort {

// A line of permutations.tsv.
struct DataSetRow {
    int data_set = 0;          // 0 observed
    double T = kNotAvailable;  // of the model; not available where no model was looked for
    double smallest_p = 1;     // over all markers and models
    std::string marker;        // that has it; empty where there is no marker
    int learners = -1;         // base learners in the data set's model; -1 not available
};

// A line of quantiles.tsv: the r-th smallest P_MIN, observed and in the permuted data sets.
struct QuantileRow {
    long rank = 0;  // r, from 1
    double observed = kNotAvailable;
    double expected = kNotAvailable;  // median of the permuted data sets
    double low = kNotAvailable;       // 2.5 % of them are smaller
    double high = kNotAvailable;      // and 2.5 % larger
};

}  // namespace vort
