// The genotype data set as a text file.
//
// An optional header line (titles of the identifier column, of the phenotype column and of every
// marker), then a line for each individual:
//
//     ind1 0 0 2 -1 1        identifier (optional), phenotype, one genotype for each marker
//
// A genotype is 0, 1 or 2, or a minus sign with any one character behind it for a missing one.
// Blanks separate genotypes; a tab does not. Genotypes that a row does not give are missing. No row
// is read after a phenotype that is no number; individuals without a row are controls with missing
// genotypes.
//
// Rows are read one after the other, in strips of eight; what takes longer, their parsing and
// packing, is done on several threads. Memory: the packed genotypes, and the text of one strip for
// each thread.
#pragma once

#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "common/transcript.h"
#include "genotypes/genotypes.h"

namespace vort {

struct TextDataSet {
    std::string file;
    int individuals = 0;  // "Sample_size" and "Number_of_markers"; below 0 they count as 0
    int markers = 0;
    int head = 0;    // 1: the file begins with a header line
    int record = 0;  // 1: rows begin with an identifier
};

struct DataSet {
    Genotypes genotypes;
    std::vector<short> phenotypes;  // 1 is a case, all else a control
    int cases = 0;
    int controls = 0;
};

// Ends with a Stop where the file cannot be opened ("file open NAME not good", status 0), or where
// reading fails or it is a directory (status 1, the reason told as a diagnostic). Diagnostics come
// in the order of the rows, whatever the number of threads.
DataSet load_text_data_set(const TextDataSet& settings, int threads, Diagnostics& diagnostics,
                           Transcript& transcript);

}  // namespace vort
