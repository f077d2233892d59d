// The five-model single-marker test.
//
// With a_g and b_g the counts of genotype g in R genotyped cases and S genotyped controls:
//
//   additive    allele frequencies p = (2 a2 + a1) / 2R, q = (2 b2 + b1) / 2S;
//               (p - q)^2 (K + 1 / ((1 - p)/2S + (1 - q)/2R)), K = 4RS / alleles counted, an
//               integer quotient cut towards zero
//   dominant    carriers p = (a2 + a1) / R, q = (b2 + b1) / S;
//               (p - q)^2 (1 / (p/S + q/R) + 1 / ((1 - p)/S + (1 - q)/R))
//   recessive   the same with p = a2 / R, q = b2 / S
//   genotype    the sum over genotypes of (p - q)^2 / (q/R + p/S), one degree of freedom fewer than
//               genotypes seen
//
// Each is referred to a chi-square distribution. These are not the textbook forms: a case
// proportion is divided by the number of controls and the other way round, which estimates the
// variance as if the groups had swapped their sizes, and the integer quotient makes the additive
// statistic jump between neighbouring tables. Both are part of the method, and so is 0.0001, the
// statistic of a marker that does not vary.
//
// Example: R = S = 100 and 2 a2 + a1 + b1 + 2 b2 = 300 give K = 133, not 133.33.
//
// Cost: one look at each individual, then at most four evaluations of the incomplete gamma
// function.
#include "screening/five_model_test.h"

#include <algorithm>
#include <cstdint>

#include "numeric/distributions.h"
#include "screening/globals.h"

namespace vort {

namespace {

constexpr double kNoVariation = 0.0001;

double upper_tail(int degrees_of_freedom, double statistic) {
    return 1 - pchisq(degrees_of_freedom, statistic);
}

bool does_not_vary(double p, double q) {
    return (p <= 0 && q <= 0) || (p >= 1 && q >= 1);
}

double additive_statistic(const int* a, const int* b, int R, int S) {
    const double p = static_cast<double>(2 * a[2] + a[1]) / (2.0 * R);
    const double q = static_cast<double>(2 * b[2] + b[1]) / (2.0 * S);
    if (does_not_vary(p, q)) return kNoVariation;
    const std::int64_t alleles = std::int64_t{2} * a[2] + a[1] + b[1] + std::int64_t{2} * b[2];
    const std::int64_t K = alleles == 0 ? 0 : std::int64_t{4} * R * S / alleles;
    return ((p - q) * (p - q)) *
           (static_cast<double>(K) + 1 / ((1 - p) / (2.0 * S) + (1 - q) / (2.0 * R)));
}

double carrier_statistic(int case_carriers, int control_carriers, int R, int S) {
    const double p = static_cast<double>(case_carriers) / R;
    const double q = static_cast<double>(control_carriers) / S;
    if (does_not_vary(p, q)) return kNoVariation;
    return ((p - q) * (p - q)) * (1 / (p / S + q / R) + 1 / ((1 - p) / S + (1 - q) / R));
}

double genotype_pvalue(const int* a, const int* b, int R, int S) {
    double statistic = 0;
    int classes = 0;
    for (int g = 2; g >= 0; --g) {
        const double p = static_cast<double>(a[g]) / R;
        const double q = static_cast<double>(b[g]) / S;
        if (p > 0 || q > 0) {
            statistic += ((p - q) * (p - q)) / (q / R + p / S);
            ++classes;
        } else {
            statistic += kNoVariation;
        }
    }
    return classes < 2 ? 1.0 : upper_tail(classes - 1, statistic);
}

}  // namespace

void five_model_pvalues(const GenotypeCounts& in_cases, const GenotypeCounts& in_controls,
                        int cases, int controls, double pvalue[4]) {
    const int* a = in_cases.count;
    const int* b = in_controls.count;
    const int R = cases - a[3];
    const int S = controls - b[3];
    if (R == 0 || S == 0) {
        std::fill(pvalue, pvalue + 4, 1.0);
        return;
    }
    pvalue[0] = upper_tail(1, additive_statistic(a, b, R, S));
    pvalue[1] = upper_tail(1, carrier_statistic(a[2] + a[1], b[2] + b[1], R, S));
    pvalue[2] = upper_tail(1, carrier_statistic(a[2], b[2], R, S));
    pvalue[3] = genotype_pvalue(a, b, R, S);
}

double calculate_pvalue4_and_freq(short* phenotypes, char** genotypes, int /*Marker*/,
                                  int individuals, int j, double* pvalue, int* caseCount,
                                  int* controlCount) {
    GenotypeCounts in_cases;
    GenotypeCounts in_controls;
    for (int i = 0; i < individuals; ++i) {
        const char code = genotypes[i][j];
        GenotypeCounts& group = phenotypes[i] == 1 ? in_cases : in_controls;
        ++group.count[code == -1 ? 3 : code];
    }
    five_model_pvalues(in_cases, in_controls, samplesize[1], samplesize[0], pvalue);
    std::copy_n(in_cases.count, 4, caseCount);
    std::copy_n(in_controls.count, 4, controlCount);
    return pvalue[0];
}

}  // namespace vort
