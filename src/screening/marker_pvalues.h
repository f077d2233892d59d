// All p-values of one screening, marker by marker.
//
// This is the plain form: every marker counted and tested by itself. It serves the FDR report,
// which shows every model, and the tests hold the fast form against it.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "genotypes/genotypes.h"
#include "screening/screening_result.h"

namespace vort {

// All vectors have markers + 1 elements; element j + 1 belongs to genotype column j.
struct MarkerPvalues {
    std::array<std::vector<double>, kModels> model;
    std::vector<double> minimum;             // the smallest of the four
    std::vector<signed char> minimum_model;  // the first model, 0 to 3, that gave it

    // Markers dropped for missing genotypes, and how many of them each model had found significant.
    int dropped = 0;
    std::array<int, kModels> dropped_significant{};
};

// Tests all markers; one with too many missing genotypes gets p-values 1.
MarkerPvalues test_all_markers(const Genotypes& genotypes, std::span<const short> phenotypes);

}  // namespace vort
