// From coefficients to the importance of markers.
#pragma once

#include "legacy/best_cluster.h"

namespace vort {

// Reads the coefficient file and prints its lines. Returns the number of columns, with
// *coefficients and *second (new arrays of that many doubles, zero where the file names no value;
// the caller deletes them) and the number of coefficient lines in *nonzero; 0, with nothing set,
// where the file cannot be opened or claims more than a million columns. A line whose column is
// none is skipped and said on standard error.
int readbeta(const char* path, double** coefficients, int* nonzero, double** second);

// Adds one base learner's shares to the importance of its markers: |beta| / (number of markers) /
// v each. importance is indexed 1 .. m, markers[1 .. k] receive the markers. ncell and
// cells[0 .. *ncell-1] receive the cells of the record's group `group`; room for 10 is needed.
// print: non-zero prints each share as it stands.
void calculationimportfactor(BestClusterInformation* record, double* importance, double beta,
                             double v, int print, int* markers, int* ncell, int* cells, int group);

// Copies a text file, without the white space that it begins with and up to the first byte 0xFF,
// and adds a line end. 0, or 1 where the destination cannot be opened; a source that cannot be
// opened ends the program.
int filecopy(const char* source, const char* destination);

}  // namespace vort
