// The analysis of a study directory: "parameter.txt", the data set file that it names, and
// "Chromosome_SNP_Name.txt".
#pragma once

#include "vort/analysis.h"

namespace vort {

// Reads the study in the working directory, analyses it and leaves the reports there. Throws Stop
// where the run ends early.
void analyse_working_directory(int threads, const Console& console, Diagnostics& diagnostics);

}  // namespace vort
