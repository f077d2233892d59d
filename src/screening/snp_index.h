// Where a marker lies and what it is called, from "Chromosome_SNP_Name.txt".
//
// The table holds a line for each marker, in the order of the genotype columns and grouped by
// chromosome in ascending order: a chromosome number (1 to 26) and a name of at most 14
// characters. It is read when first asked for. A table that cannot be opened ends the program.
//
// Two numberings meet here. The locus functions count m from 0, or from 1 in their 1-based
// variants. The name functions take slot m of a table whose slots count from 1, so findSNPname
// called with a 0-based column gives the name one line above that column's; slot 0 is empty, with
// chromosome 0. Both functions are kept as they are, their callers know which they want.
#pragma once

namespace vort {

// Stores the chromosome of marker m and its 1-based locus within the chromosome, and returns the
// chromosome. A marker past the table is on the last chromosome that has markers.
int return_chromosome_and_locus(int m, int* chromosome, int* locus);   // m from 0
int return_chromosome_and_locus1(int m, int* chromosome, int* locus);  // m from 1

// The name in slot m, with the chromosome of that slot and the locus that the function above of
// the same numbering gives; an empty name and chromosome 0 outside the table. The text lives as
// long as the program.
const char* findSNPname(int m, int* chromosome, int* locus);
const char* findSNPname1(int m, int* chromosome, int* locus);

// Says on standard error what is wrong with the table, for runs that look no marker up. A table
// that cannot be opened is none of them.
void check_marker_table();

// Forgets the tables, so that the next call reads the file again. For tests.
void forget_snp_index();

}  // namespace vort
