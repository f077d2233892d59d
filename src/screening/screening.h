// Tests every marker of one data set and ranks them all; see the essay in screening.cpp.
#pragma once

#include <memory>
#include <span>

namespace vort {

// Screens the markers of `X` against the current `Y`, prints the significant ones and the whole
// ranking, and fills ranking[0 .. Marker-1] with 0-based columns, the smallest p-value first.
// Loads the data set at the first call. Returns 0.
int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking);

// Takes ranking and phenotypes from prepared file n instead. Files are consumed strictly in the
// order 0, 1, 2, ...; any other n ends the program, as does a file that cannot be opened. Elements
// of `ranking` past the file's length are left alone. Returns 0.
int single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(int* ranking, int n);

// Many data sets of the same individuals, screened from one pass over the genotypes. What each
// screening prints and returns is what the function above would with `Y` set to its phenotypes.
class DataSetScreening {
  public:
    // phenotypes[d]: `Sample` phenotypes of data set d, as many cases in each as in the data set
    // file; rankings[d]: room for `Marker` ints, which hold packed counts until data set d is
    // screened. The data set must be loaded. Both are not owned.
    DataSetScreening(std::span<short* const> phenotypes, std::span<int* const> rankings);
    ~DataSetScreening();

    // Screens data set d, once; sets `Y` to its phenotypes.
    void screen(int d);

  private:
    struct Counts;

    std::span<short* const> phenotypes_;
    std::span<int* const> rankings_;
    std::unique_ptr<Counts> counts_;  // null where each data set counts for itself
};

}  // namespace vort
