// What one screening computes of all markers.
#pragma once

#include <array>
#include <vector>

namespace vort {

constexpr int kModels = 4;  // additive, dominant, recessive, genotype

// All vectors have `Marker` + 1 elements; element j + 1 belongs to genotype column j.
struct MarkerPvalues {
    std::array<std::vector<double>, kModels> model;
    std::vector<double> minimum;             // the smallest of the four
    std::vector<signed char> minimum_model;  // the first model, 0 to 3, that gave it

    // Markers dropped for missing genotypes, and how many of them each model had found significant.
    int dropped = 0;
    std::array<int, kModels> dropped_significant{};
};

// Per-model significance, as far as lists on the console and dropped counts go.
constexpr double kSignificant = 0.002;
constexpr double kMinimumSignificant = 0.0005;

// Tests all markers of `X` against `Y`; a marker with too many missing genotypes gets p-values 1.
MarkerPvalues test_all_markers();

}  // namespace vort
