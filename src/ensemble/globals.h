// State of the ensemble stage.
#pragma once

#include <vector>

#include "ensemble/output_information.h"

namespace vort {

// Prefix of the stage's file names; points to the empty string once gethostname was called. Not
// owned. Set by main_vort3.
extern char* hostname;

// "Sample_size", "Best_m" and "How_many_imputation_to_deal_with_missing" as the ensemble stage
// reads them, fractions cut. ns and nm go to the final report; missingrepeat is carried. Set by
// main_vort3.
extern int ns;
extern int nm;
extern int missingrepeat;

// Replicates, and permuted data sets to run the analysis on. Set by permutation_simulation1 from
// the builder's settings.
extern int repeat;
extern int permutation;

// The base learners of the final model. Filled by permutation_simulation1, read by the report.
extern std::vector<output_information> base_learner;

}  // namespace vort
