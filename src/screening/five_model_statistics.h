// The statistics of the five-model test (docs/method.md, section 1), written once for one marker
// and for several.
//
// Number is a double or a vector of them; all counts are whole numbers, R and S positive. The
// additive statistic has a quotient of whole numbers that is cut: R = S = 100 and 2 a2 + a1 + b1 +
// 2 b2 = 300 give K = 133, not 133.33. Vectors form it in doubles and need 4RS below 2^51, as
// fits() tells: a quotient of whole numbers that small never rounds up to the next one, so K is
// exact.
#pragma once

#include <cstdint>

#include "numeric/lanes.h"

namespace vort {

// Whether groups of these sizes are small enough: any two of up to 47 million together are.
constexpr bool fits(double cases, double controls) {
    return 4.0 * cases * controls < 0x1p51;
}

template <typename Number>
struct GenotypeTable {
    Number a0, a1, a2;  // cases with genotype 0, 1, 2
    Number b0, b1, b2;  // controls
    Number R, S;        // their sums
};

template <typename Number>
struct ModelStatistics {
    Number additive, dominant, recessive, genotype;
    Number classes;  // genotypes seen
};

template <typename Number>
[[gnu::always_inline]] inline Number statistic_unless_constant(const Number& p, const Number& q,
                                                               const Number& statistic) {
    constexpr double kNoVariation = 0.0001;
    const Number constant = Number{} + kNoVariation;
    const Number above = select(p <= 0.0, select(q <= 0.0, constant, statistic), statistic);
    return select(p >= 1.0, select(q >= 1.0, constant, above), above);
}

// 4RS / alleles, cut. The first form needs fits(); the second holds for all groups.
template <typename Number>
[[gnu::always_inline]] inline Number whole_quotient(const Number& R, const Number& S,
                                                    const Number& alleles) {
    return whole_part<Number>(4.0 * R * S / select(alleles > 0.0, alleles, alleles + 1.0));
}
template <>
[[gnu::always_inline]] inline double whole_quotient(const double& R, const double& S,
                                                    const double& alleles) {
    const auto exact = [](double whole) { return static_cast<std::int64_t>(whole); };
    const std::int64_t quotient = 4 * exact(R) * exact(S) / exact(alleles > 0.0 ? alleles : 1.0);
    return static_cast<double>(quotient);
}

template <typename Number>
[[gnu::always_inline]] inline Number additive_statistic(const GenotypeTable<Number>& t) {
    const Number p = (2.0 * t.a2 + t.a1) / (2.0 * t.R);
    const Number q = (2.0 * t.b2 + t.b1) / (2.0 * t.S);
    const Number alleles = 2.0 * t.a2 + t.a1 + t.b1 + 2.0 * t.b2;
    const Number K = whole_quotient<Number>(t.R, t.S, alleles);
    const Number weight = K + 1.0 / ((1.0 - p) / (2.0 * t.S) + (1.0 - q) / (2.0 * t.R));
    return statistic_unless_constant<Number>(p, q, ((p - q) * (p - q)) * weight);
}

// p and q: shares of carriers in cases and in controls.
template <typename Number>
[[gnu::always_inline]] inline Number carrier_statistic(const Number& p, const Number& q,
                                                       const GenotypeTable<Number>& t) {
    const Number weight = 1.0 / (p / t.S + q / t.R) + 1.0 / ((1.0 - p) / t.S + (1.0 - q) / t.R);
    return statistic_unless_constant<Number>(p, q, ((p - q) * (p - q)) * weight);
}

template <typename Number>
[[gnu::always_inline]] inline void add_genotype(const Number& p, const Number& q,
                                                const GenotypeTable<Number>& t,
                                                ModelStatistics<Number>& out) {
    const Number term = ((p - q) * (p - q)) / (q / t.R + p / t.S);
    const Number nobody = Number{} + 0.0001;
    // Proportions are not negative, so their sum is positive where one of them is.
    out.genotype += select(p + q > 0.0, term, nobody);
    out.classes += select(p + q > 0.0, Number{} + 1.0, Number{});
}

template <typename Number>
[[gnu::always_inline]] inline void five_model_statistics(const GenotypeTable<Number>& t,
                                                         ModelStatistics<Number>& out) {
    out.additive = additive_statistic<Number>(t);
    out.dominant = carrier_statistic<Number>((t.a2 + t.a1) / t.R, (t.b2 + t.b1) / t.S, t);
    out.recessive = carrier_statistic<Number>(t.a2 / t.R, t.b2 / t.S, t);
    out.genotype = Number{};
    out.classes = Number{};
    add_genotype<Number>(t.a2 / t.R, t.b2 / t.S, t, out);
    add_genotype<Number>(t.a1 / t.R, t.b1 / t.S, t, out);
    add_genotype<Number>(t.a0 / t.R, t.b0 / t.S, t, out);
}

}  // namespace vort
