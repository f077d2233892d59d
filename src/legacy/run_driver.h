// The ensemble stage behind its own reading of "parameter.txt".
#pragma once

namespace vort {

// phenotypes and rankings have a row for each data set, the observed one first. Returns the
// selected markers as 1-based ranks, ended by a value of 0 or less, in a new array that the caller
// deletes; *count is the number of base learners of the final model.
int* main_vort3(int Sample, int Marker, char** X, short** phenotypes, int** rankings,
                int Permutation, int Replication, int* count);

// Sets `hostname`, the prefix of the ensemble stage's files, to the empty string. Returns 0.
int gethostname();

}  // namespace vort
