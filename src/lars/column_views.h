// The base learners as the parts of the selector work on them: a view of each column's values, one
// value an individual, all of the same length. The values are the caller's; what changes them says
// so.
#pragma once

#include <span>

namespace vort {

using ColumnViews = std::span<const std::span<double>>;

// The terms of the sum in the order of the values.
inline double mean_of(std::span<const double> values) {
    double sum = 0.0;
    for (const double value : values) sum += value;
    return sum / static_cast<double>(values.size());
}

}  // namespace vort
