// Tests markers of `X` against `Y`.
#pragma once

namespace vort {

// Counts the genotypes of column j (from 0) and tests it: fills pvalue[0..3] (additive, dominant,
// recessive, genotype), caseCount[0..3] and controlCount[0..3] (genotype 0, 1, 2, missing), and
// returns pvalue[0]. The group sizes are those of `samplesize`. Marker is not used.
double calculate_pvalue4_and_freq(short* Y, char** X, int Marker, int Sample, int j, double* pvalue,
                                  int* caseCount, int* controlCount);

// Screens the markers of `X` against the current `Y`, prints the significant ones and the whole
// ranking, and fills ranking[0 .. Marker-1] with 0-based columns, the smallest p-value first.
// Loads the data set at the first call. Returns 0. Where `save_pre` is set, writes prepared file
// number (count of earlier ones); where `orginal_data` and `write_FDR_result` are, the FDR report.
int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking);

// Takes ranking and phenotypes from prepared file n instead. Files are consumed strictly in the
// order 0, 1, 2, ...; any other n ends the program, as does a file that cannot be opened. Elements
// of `ranking` past the file's length are left alone. Returns 0.
int single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(int* ranking, int n);

}  // namespace vort
