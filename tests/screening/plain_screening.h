// The screening as it is defined: phenotypes shuffled by single draws, marker by marker, one data
// set at a time.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "common/transcript.h"
#include "numeric/index_sort.h"
#include "numeric/plain_draws.h"
#include "screening/marker_pvalues.h"

namespace vort::testing {

// Each individual takes the phenotype of one that is left, drawn at random.
inline std::vector<short> shuffled(std::vector<short> left, PlainGenerator& generator) {
    std::vector<short> out;
    while (!left.empty()) {
        const auto k = static_cast<std::ptrdiff_t>(generator.next() * double(left.size()));
        out.push_back(left[static_cast<std::size_t>(k)]);
        left.erase(left.begin() + k);
    }
    return out;
}

inline Findings plain_findings(const MarkerPvalues& all) {
    Findings out;
    out.dropped = all.dropped;
    out.dropped_significant = all.dropped_significant;
    for (int k = 1; k < static_cast<int>(all.minimum.size()); ++k) {
        for (int model = 0; model < kModels; ++model) {
            const double p = all.model[model][k];
            if (p <= 0.002) out.significant[model].push_back({k, p});
        }
        if (all.minimum[k] <= 0.0005) out.minimum_significant.push_back({k, all.minimum[k]});
    }
    return out;
}

inline void print_plain_lists(Transcript& out, const Findings& all) {
    const char* const names[] = {"additive ", "dominant ", "recessive", "genotype ", "minimum  "};
    const auto list = [&](int model, const std::vector<Finding>& findings) {
        for (const Finding& f : findings) {
            out << "model=" << names[model] << " i=" << f.marker << " pvalue=" << general(f.pvalue)
                << '\n';
        }
    };
    for (int model = 0; model < kModels; ++model) list(model, all.significant[model]);
    list(kModels, all.minimum_significant);
    for (int model = 0; model < kModels; ++model) {
        out << "model=" << names[model]
            << " # of marker's pvalue<0.002=" << all.significant[model].size() << '\n';
    }
    out << "model=minimum   # of marker's pvalue<0.002/4=" << all.minimum_significant.size()
        << '\n';
    for (int model = 0; model < kModels; ++model) {
        out << "model=" << names[model]
            << " # of marker's missing num than 20=" << all.dropped_significant[model]
            << " total_count_drop_diseasemaker=" << all.dropped << '\n';
    }
}

// What one data set's screening is to leave.
struct PlainScreening {
    PlainScreening(const Genotypes& genotypes, std::span<const short> phenotypes)
        : all(test_all_markers(genotypes, phenotypes)) {
        std::vector<int> order(all.minimum.size());
        Quickindex(all.minimum.data(), order.data(), genotypes.markers());
        ranking.assign(order.begin() + 1, order.end());
        Transcript out(true);
        print_plain_lists(out, plain_findings(all));
        for (std::size_t k = 0; k < ranking.size(); ++k) {
            out << k + 1 << " index=" << ranking[k]
                << " pvalue=" << general(all.minimum[ranking[k]]) << " ref=" << ranking[k] - 1
                << '\n';
        }
        text = out.text();
        for (int& column : ranking) --column;
    }

    MarkerPvalues all;
    std::vector<int> ranking;  // columns
    std::string text;          // but for the line that tells the seconds
};

}  // namespace vort::testing
