// The ensemble stage: a model for the observed data set, the same on every permuted one, reports.
#pragma once

namespace vort {

// Runs the stage on phenotypes[r][0 .. Sample-1] and rankings[r][0 .. Marker-1], r = 0 for the
// observed data set and Replication + k for permutation k (0-based; rankings hold 0-based columns
// of X). Writes "P_value.txt" and "Final_result.txt". Returns the selected markers as 1-based
// ranks, ended by -1, in a new array that the caller deletes; *count is the number of base learners
// of the final model. Needs what "parameter.txt" asks of it to have been screened and loaded, and
// ends the program otherwise.
int* permutation_simulation1(int Sample, int Marker, char** X, short** phenotypes, int** rankings,
                             int Permutation, int Replication, int* count);

}  // namespace vort
