// markers.tsv, or markers.tsv.gz: a line for each marker, tab-separated, with a header.
//
//     CHR SNP BP A1 A2                     1 to 26; full names; A1 is the counted allele
//     CASE_A1A1 CASE_A1A2 CASE_A2A2        cases with two, one and no copies of A1
//     CTRL_A1A1 CTRL_A1A2 CTRL_A2A2        controls
//     CASE_MISS CTRL_MISS                  without a genotype
//     CHISQ_ADD P_ADD CHISQ_DOM P_DOM CHISQ_REC P_REC CHISQ_GENO DF_GENO P_GENO
//     MODEL P_MIN RANK                     the model of the smallest p-value, and the rank
//     EMP1 EMP2                            permutation p-values: of the marker, and over all
//     markers IN_MODEL                             1 or 0
//
// NA stands for what is not available.
#pragma once

#include <functional>
#include <string>

#include "common/diagnostics.h"
#include "results/marker_rows.h"

namespace vort {

// Gets all rows in their order, one at a time.
using TakeRow = std::function<void(const MarkerRow& row)>;

// Writes all rows, formed and formatted (and compressed, where `gzip`) in parallel, and hands them
// on. The bytes do not depend on the number of threads. A file that cannot be written to its end
// stops the run.
void write_marker_file(const std::string& path, const MarkerRows& rows, bool gzip, int threads,
                       Diagnostics& diagnostics, const TakeRow& take);

// Hands on each line; the row's texts last as long as the call. Throws InputError where the file
// cannot be read or is no such table.
void read_marker_file(const std::string& path, const TakeRow& take);

}  // namespace vort
