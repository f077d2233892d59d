// The genotype data set in `X` and `Y`; its file is described in genotypes/text_data_set.h.
#pragma once

#include <span>

#include "genotypes/genotypes.h"

namespace vort {

// Fills `Sample` rows of X and elements 0 .. `Sample`-1 of Y from `inputfilename`, and sets
// `samplesize`; returns 0. Genotypes that a row does not give are -1; phenotypes that do not
// parse are 0, and no row after such a one is read. What is wrong with the file is said on
// standard error. A file that cannot be opened ends the program.
int read_data(char** X, short* Y);

// Makes `X` and `Y` (sets `exist_X_Y_data`) and loads the data set, unless that was done before.
void load_data_set_once();

// Frees `X` and `Y`, if they are there.
void release_data_set();

// Diagnostic dumps of the data set for a reader of it: with a non-zero argument every case, then
// every control, with the codes of columns 1 to 100, on the console and in "inputfile.txt" or
// "current_file.txt". With 0 they do nothing.
void write_input(int wanted);
void write_current(int wanted);

// Columns of rows of codes, packed: column j of the result is columns[j], or j itself.
Genotypes packed_columns(const char* const* rows, int individuals, std::span<const int> columns);
Genotypes packed(const char* const* rows, int individuals, int markers);

}  // namespace vort
