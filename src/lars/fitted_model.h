// What follows from a model's coefficients and its normalised columns.
#pragma once

#include <span>
#include <vector>

#include "common/transcript.h"
#include "lars/column_views.h"

namespace vort {

// Columns (0-based) whose coefficient is not 0.
std::vector<int> selected_columns(std::span<const double> beta);

// fitted[i] = sum of beta[j] * columns[j][i] over the selected columns, in increasing j.
void fit(ColumnViews columns, std::span<const double> beta, std::span<double> fitted);

// Share of the individuals whose fitted value and centred response agree in sign; a fitted value
// of 0 counts as positive, a response at the mean never agrees. The transcript tells it.
double correct_rate(ColumnViews columns, std::span<const double> beta,
                    std::span<const double> response, Transcript& transcript);

// Mean square of each selected column; 0 for the others.
std::vector<double> mean_squares(ColumnViews columns, std::span<const double> beta);

}  // namespace vort
