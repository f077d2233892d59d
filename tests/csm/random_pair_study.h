// Random studies for the search of pairs, and the search as it is defined.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <vector>

#include "csm/marker_planes.h"
#include "csm/pair_search.h"
#include "csm/quick_pvalue.h"
#include "numeric/index_sort.h"

namespace vort::testing {

class RandomPairStudy {
  public:
    enum class Phenotype { kTwoValues, kQuantitative, kAllCases };

    struct Shape {
        int n;
        int m;
        double missing = 0;      // share of genotypes
        double duplicated = 0;   // share of markers that repeat an earlier one
        double monomorphic = 0;  // share of markers with genotype 0 only
        double effect = 0;       // share of genotypes that follow the phenotype
        double case_share = 0.5;
        Phenotype phenotype = Phenotype::kTwoValues;
        bool spread = false;  // a run of cases at the start and one in the middle
    };

    RandomPairStudy(std::uint32_t seed, const Shape& shape)
        : random_(seed), markers(shape.n, shape.m), y(static_cast<std::size_t>(shape.n)) {
        for (double& value : y) value = draw_phenotype(shape);
        if (shape.spread) spread_cases();
        for (int j = 0; j < shape.m; ++j) {
            codes_.push_back(draw_marker(shape, j));
            markers.set(j, codes_.back());
        }
        double sum = 0;
        for (const double value : y) sum += value;
        const double mean = sum / shape.n;
        double squares = 0;
        for (double& value : y) {
            value -= mean;
            squares += value * value;
        }
        sigma = squares / shape.n;
    }

    PairSearchInput input() const { return {markers, y, sigma}; }

    // P-values of all pairs, elements 1 .. N, each from a pass over the individuals.
    std::vector<double> pvalues(Transcript& transcript) const {
        std::vector<double> all(1);
        const int m = markers.markers();
        for (int a = 0; a < m; ++a) {
            for (int b = a + 1; b < m; ++b) {
                if (all.size() % 1000 == 0) transcript << "j=" << all.size() << '\n';
                std::vector<double> sum(9);
                std::vector<int> count(9);
                for (std::size_t i = 0; i < y.size(); ++i) {
                    if (codes_[a][i] < 0 || codes_[b][i] < 0) continue;
                    sum[3 * codes_[a][i] + codes_[b][i]] += y[i];
                    ++count[3 * codes_[a][i] + codes_[b][i]];
                }
                all.push_back(
                    quick_pvalue(sum, count, static_cast<int>(y.size()), sigma, transcript));
            }
        }
        return all;
    }

    double uniform() { return static_cast<double>(random_() >> 5) / (1 << 27); }
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  private:
    double draw_phenotype(const Shape& shape) {
        if (shape.phenotype == Phenotype::kAllCases) return 1;
        if (shape.phenotype == Phenotype::kQuantitative) return below(7);
        return uniform() < shape.case_share ? 1 : 0;
    }
    void spread_cases() {
        std::sort(y.begin(), y.end(), std::greater<>());
        const auto cases = std::count(y.begin(), y.end(), 1.0);
        const auto middle = y.begin() + static_cast<std::ptrdiff_t>(y.size() / 2);
        std::rotate(y.begin() + cases / 2, y.begin() + cases, std::max(middle, y.begin() + cases));
    }
    std::vector<signed char> draw_marker(const Shape& shape, int j) {
        if (j > 0 && uniform() < shape.duplicated) return codes_[below(j)];
        const bool monomorphic = uniform() < shape.monomorphic;
        const double frequency = monomorphic ? 0 : 0.02 + 0.48 * uniform();
        const double effect = shape.effect * uniform();
        std::vector<signed char> codes(y.size());
        for (std::size_t i = 0; i < codes.size(); ++i) {
            int code = (uniform() < frequency ? 1 : 0) + (uniform() < frequency ? 1 : 0);
            if (!monomorphic && uniform() < effect) code = y[i] > 0 ? 2 : 0;
            codes[i] = static_cast<signed char>(uniform() < shape.missing ? -1 : code);
        }
        return codes;
    }

    std::mt19937 random_;
    std::vector<std::vector<signed char>> codes_;

  public:
    MarkerPlanes markers;
    std::vector<double> y;
    double sigma;
};

// Number of pairs that pass, from the last down.
inline int plainly_passed(double cutoff, double alpha, const std::vector<double>& pvalue,
                          const std::vector<int>& order) {
    const int T = static_cast<int>(pvalue.size()) - 1;
    int j = T;
    double H = 0;
    for (int t = 1; t <= T; ++t) H += 1.0 / t;
    while (j > 0 && (cutoff / T <= pvalue[order[j]] / j * H || pvalue[order[j]] >= alpha)) {
        H -= 1.0 / j;
        --j;
    }
    return j;
}

inline std::vector<int> sorted_plainly(std::vector<double>& pvalue) {
    std::vector<int> order(pvalue.size());
    Quickindex(pvalue.data(), order.data(), static_cast<int>(pvalue.size()) - 1);
    return order;
}

}  // namespace vort::testing
