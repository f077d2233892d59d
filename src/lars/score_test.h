// Is the selected model, as a whole, associated with the response?
#pragma once

#include <span>
#include <vector>

#include "common/transcript.h"

namespace vort {

// The columns (0-based) that the test is about: those whose coefficient exceeds 1e-6 in absolute
// value.
std::vector<int> tested_columns(std::span<const double> beta);

// p-value of the score test that the coefficients of all these columns are 0. Each column has a
// value for every value of the response. 0.5 where there is no column or the statistic is not
// positive; columns that depend on each other make it meaningless, and may make it NaN, of which
// the transcript tells.
double score_test(std::span<const std::span<const double>> columns,
                  std::span<const double> response, Transcript& transcript);

}  // namespace vort
