// Four association tests of one marker, and the smallest of their p-values.
#pragma once

namespace vort {

// Genotype counts of one group: individuals with genotype 0, 1, 2, and with a missing genotype.
struct GenotypeCounts {
    int count[4] = {0, 0, 0, 0};
};

// The p-values of the additive, dominant, recessive and genotype models, in this order, from the
// counts of a marker in cases and in controls. `cases` and `controls` are the group sizes, missing
// genotypes included. All four are 1 where a group has no genotype at all.
void five_model_pvalues(const GenotypeCounts& in_cases, const GenotypeCounts& in_controls,
                        int cases, int controls, double pvalue[4]);

// Counts the genotypes of column j (from 0) and tests it: fills pvalue[0..3] in the order above,
// caseCount[0..3] and controlCount[0..3] (genotype 0, 1, 2, missing), and returns pvalue[0]. The
// group sizes are those of `samplesize`. Marker is not used.
double calculate_pvalue4_and_freq(short* Y, char** X, int Marker, int Sample, int j, double* pvalue,
                                  int* caseCount, int* controlCount);

}  // namespace vort
