// Tests every marker of one data set and ranks them all; see the essay in screening.cpp.
#pragma once

namespace vort {

// Screens the markers of `X` against the current `Y`, prints the significant ones and the whole
// ranking, and fills ranking[0 .. Marker-1] with 0-based columns, the smallest p-value first.
// Loads the data set at the first call. Returns 0.
int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking);

// Takes ranking and phenotypes from prepared file n instead. Files are consumed strictly in the
// order 0, 1, 2, ...; any other n ends the program, as does a file that cannot be opened. Elements
// of `ranking` past the file's length are left alone. Returns 0.
int single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(int* ranking, int n);

}  // namespace vort
