// A study as the builder of base learners gets it: all markers, ranked in the order of the columns.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "csm/builder_data.h"
#include "support/random_study.h"

namespace vort::testing {

// A NaN has any sign and payload.
inline std::uint64_t bits(double value) {
    return std::isnan(value) ? ~std::uint64_t{0} : std::bit_cast<std::uint64_t>(value);
}

inline std::vector<int> all_columns(int markers) {
    std::vector<int> columns(static_cast<std::size_t>(markers));
    std::iota(columns.begin(), columns.end(), 0);
    return columns;
}

inline BuilderSettings builder_settings(int individuals, int markers, int clustering = 0) {
    BuilderSettings settings;
    settings.individuals = individuals;
    settings.markers = markers;
    settings.clustering = clustering;
    return settings;
}

inline BuilderData builder_data(const Genotypes& genotypes, const std::vector<short>& phenotypes,
                                int threads = 1, const Clusters* clusters = nullptr) {
    const std::vector<int> best = all_columns(genotypes.markers());
    return {{genotypes, phenotypes, best, clusters},
            builder_settings(genotypes.individuals(), genotypes.markers()),
            false,
            threads};
}

}  // namespace vort::testing
