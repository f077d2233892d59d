// What the console and the ranking show of one screening.
#pragma once

#include <array>
#include <vector>

#include "numeric/keyed_sort.h"

namespace vort {

constexpr int kModels = 4;  // additive, dominant, recessive, genotype

// Largest p-values that are listed, for one model and for the minimum over the models.
constexpr double kSignificant = 0.002;
constexpr double kMinimumSignificant = 0.0005;

struct Finding {
    int marker;  // from 1
    double pvalue;
};

struct ScreeningResult {
    // Makes ready for another data set of as many markers, whose minima then overwrite these.
    void clear() {
        for (auto& findings : significant) findings.clear();
        minimum_significant.clear();
        dropped = 0;
        dropped_significant = {};
    }

    // In ascending order of markers.
    std::array<std::vector<Finding>, kModels> significant;
    std::vector<Finding> minimum_significant;

    // Markers dropped for missing genotypes, and how many of them each model had found significant.
    int dropped = 0;
    std::array<int, kModels> dropped_significant{};

    // The minimum p-value of every marker, as the key of its 1-based number, in marker order.
    std::vector<KeyedIndex> minimum;
};

}  // namespace vort
