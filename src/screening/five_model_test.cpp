#include "screening/five_model_test.h"

#include <algorithm>

#include "numeric/distributions.h"
#include "screening/five_model_statistics.h"
#include "screening/globals.h"

namespace vort {

namespace {

double upper_tail(int degrees_of_freedom, double statistic) {
    return 1 - pchisq(degrees_of_freedom, statistic);
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
    const auto count = [](int c) { return static_cast<double>(c); };
    const GenotypeTable<double> table{count(a[0]), count(a[1]), count(a[2]), count(b[0]),
                                      count(b[1]), count(b[2]), count(R),    count(S)};
    ModelStatistics<double> statistics{};
    five_model_statistics<double>(table, statistics);
    const int classes = static_cast<int>(statistics.classes);
    pvalue[0] = upper_tail(1, statistics.additive);
    pvalue[1] = upper_tail(1, statistics.dominant);
    pvalue[2] = upper_tail(1, statistics.recessive);
    pvalue[3] = classes < 2 ? 1.0 : upper_tail(classes - 1, statistics.genotype);
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
