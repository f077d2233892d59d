// A study as the bare program has it: a directory with parameter.txt, a text data set and
// Chromosome_SNP_Name.txt, read by directory_reader() of cohort.h and written here.
#pragma once

#include <string>

#include "study/study.h"

namespace vort {

// The parameter file of a study that write_study_directory() writes.
std::string parameter_text(const StudyParameters& parameters, int individuals, int markers);

// How many individuals are called there as one before them is: a_b c and a b_c are both a_b_c. Such
// a directory is one for the bare program alone.
long shared_identifiers(const Study& study);

// Writes the three files into a folder that is there, replacing any of the same names. Individuals
// are called FID_IID, or IID where both are the same or FID is 0; white space in names becomes '_'.
// Names are written in full, of which the bare program takes 14 characters. Throws
// std::runtime_error, with path and reason, where a file cannot be written to its end.
void write_study_directory(const Study& study, const std::string& parameter_text,
                           const std::string& folder);

}  // namespace vort
