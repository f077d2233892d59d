// Where a marker lies and what it is called, from "Chromosome_SNP_Name.txt" (the file and the two
// numberings: genotypes/marker_table.h). The first `Marker` entries are read when first asked for,
// and what is wrong with them is said on standard error then. A table that cannot be opened ends
// the program.
#pragma once

#include "genotypes/marker_table.h"

namespace vort {

// Stores the chromosome of marker m and its 1-based locus within the chromosome, and returns the
// chromosome. A marker past the table is on the last chromosome that has markers.
int return_chromosome_and_locus(int m, int* chromosome, int* locus);   // m from 0
int return_chromosome_and_locus1(int m, int* chromosome, int* locus);  // m from 1

// The name in slot m, with the chromosome of that slot and the locus that the function above of
// the same numbering gives; an empty name and chromosome 0 outside the table. The text lives until
// reset_default_objects().
const char* findSNPname(int m, int* chromosome, int* locus);
const char* findSNPname1(int m, int* chromosome, int* locus);

// The table itself.
const MarkerTable& default_marker_table();

}  // namespace vort
