// All p-values of one screening, marker by marker.
//
// This is the form for what the lanes do not serve: FDR reports, which show every model, and
// studies of so many individuals that counts or products of group sizes do not fit.
#pragma once

#include <array>
#include <vector>

#include "screening/minimum_screening.h"
#include "screening/screening_result.h"

namespace vort {

// All vectors have `Marker` + 1 elements; element j + 1 belongs to genotype column j.
struct MarkerPvalues {
    std::array<std::vector<double>, kModels> model;
    std::vector<double> minimum;             // the smallest of the four
    std::vector<signed char> minimum_model;  // the first model, 0 to 3, that gave it

    // Markers dropped for missing genotypes, and how many of them each model had found significant.
    int dropped = 0;
    std::array<int, kModels> dropped_significant{};
};

// Tests all markers of `X` against `Y`; a marker with too many missing genotypes gets p-values 1.
MarkerPvalues test_all_markers();

// What of them is shown.
ScreeningResult result_of(const MarkerPvalues& all);

// From `samplesize` and `not_over_missing_marker_drop_ratio`.
MissingLimits missing_limits();

}  // namespace vort
