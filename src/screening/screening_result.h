// What the console shows of one data set's screening, beside the ranking.
#pragma once

#include <array>
#include <vector>

namespace vort {

constexpr int kModels = 4;  // additive, dominant, recessive, genotype

// The models' names as printed; the fifth is the smallest of the four.
constexpr std::array<const char*, kModels + 1> kModelNames = {"additive ", "dominant ", "recessive",
                                                              "genotype ", "minimum  "};

// Largest p-values that are listed, for one model and for the minimum over the models.
constexpr double kSignificant = 0.002;
constexpr double kMinimumSignificant = 0.0005;

// Share of cases, and of controls, that may miss a marker's genotype before the marker is dropped.
constexpr double kMissingShare = 0.05;

struct Finding {
    int marker;  // from 1
    double pvalue;
};

// Of a stretch of markers, or of all of them.
struct Findings {
    // In ascending order of markers.
    std::array<std::vector<Finding>, kModels> significant;
    std::vector<Finding> minimum_significant;

    // Markers dropped for missing genotypes, and how many of them each model had found significant.
    int dropped = 0;
    std::array<int, kModels> dropped_significant{};

    // Adds those of the markers that follow.
    void add(const Findings& next) {
        for (int model = 0; model < kModels; ++model) {
            significant[model].insert(significant[model].end(), next.significant[model].begin(),
                                      next.significant[model].end());
            dropped_significant[model] += next.dropped_significant[model];
        }
        minimum_significant.insert(minimum_significant.end(), next.minimum_significant.begin(),
                                   next.minimum_significant.end());
        dropped += next.dropped;
    }
};

}  // namespace vort
