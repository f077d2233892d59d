// The main report, "Final_result.txt".
#pragma once

#include "ensemble/base_learner.h"
#include "legacy/output_information.h"

namespace vort {

// Writes the report of a model with n_bl >= 1 base learners, and echoes most of it on the console.
// r is the data set's row in `phenotypes` (Sample shorts) and `rankings` (0-based columns of X);
// ns individuals and nm ranked markers are tabulated. marker_list and importance_list have
// marker_count entries, first_codes and last_codes 10. Returns the marker list, ended by -1, in a
// new array that the caller deletes.
int* Final_result(int r, int Sample, int Marker, char** X, short** phenotypes, int** rankings,
                  int Permutation, int Replication, int ns, int nm, int n_bl,
                  output_information* base_learner, int* importance_list, int marker_count,
                  int* marker_list, int* first_codes, int* last_codes);

// Begins "Final_result.txt": a copy of "parameter.txt", then the lines of raw codes.
void begin_report(int nm, const int* first_codes, const int* last_codes);

// A base learner from the engine's form, and to it.
output_information information_of(const BaseLearner& learner);
BaseLearner learner_of(const output_information& information);

}  // namespace vort
