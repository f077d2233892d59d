// State of the default run, each global with who sets it. What the engine takes as arguments is
// taken from here by the functions of this folder.
#pragma once

#include <string>
#include <vector>

#include "legacy/output_information.h"

namespace vort {

// --- Screening. Set by ReadPara_gw_vort3, by way of its arguments, unless said otherwise. ---

// Numbers of individuals, of markers and of permuted data sets (parameters "Sample_size",
// "Number_of_markers", "Number_of_permutation").
extern int Sample;
extern int Marker;
extern int Permutation;

// Number of observed data sets; no parameter changes it.
extern int Replication;

// "How_many_imputation_to_deal_with_missing"; read, carried, used by nothing.
extern int missingrepeat1;

// 1 where the data set file starts with a header line, and where each of its rows starts with an
// identifier ("Head", "Recorder_num").
extern int head;
extern int record;

// "Best_m": markers in a prepared file.
extern int Save_marker_length;

// Name of the data set file ("Inputfile"), ended by NUL.
extern char inputfilename[100];

// 1 while observed data sets are screened, 0 while permuted ones are; set by the caller, read by
// the FDR report.
extern int orginal_data;

// 1: screen from the data set in memory; otherwise from prepared files. Read by callers.
extern int direct_calculate;

// 1 once `X` and `Y` are there. Set by load_data_set_once, which the first screening calls.
extern int exist_X_Y_data;

// Genotypes, `Sample` rows of `Marker` codes: 0, 1, 2 copies of one allele, -1 missing. Both
// indexes from 0. Loaded by load_data_set_once, freed by release_data_set.
extern char** X;

// Phenotypes, `Sample` + 1 elements (the last is spare): 1 is a case, all else a control. Callers
// shuffle them between screenings.
extern short* Y;

// Numbers of controls [0] and cases [1] in the data set file. Set by read_data.
extern int samplesize[2];

// The models' names as printed, in the order of their numbers.
extern const char* const modelname[5];

// Share of cases, and of controls, that may miss a marker's genotype before the marker is dropped.
// Carried: the screening knows no other than the start value.
extern double not_over_missing_marker_drop_ratio;

// Switches that no parameter turns on: FDR reports, and the writing of prepared files.
extern int write_FDR_result;
extern int save_pre;

// Prefix of the names of prepared files.
extern std::string Datapath;

// --- Builder of base learners. ---

// How the cells of a set of two markers are clustered: 0 for CSM::cluster, 1 to 4 for CSM::cluster1
// to CSM::cluster4. Set by nobody.
extern int clustermethod;

// While 1, the first evaluation of a set of two prints the method, and sets it to 0.
extern int clustermethod_print;

// While 1, the first CSM made prints its search strategy, and sets it to 0.
extern int test_method_print;

// --- Ensemble stage. ---

// Prefix of the stage's file names; points to the empty string once gethostname was called. Not
// owned.
extern char* hostname;

// "Sample_size", "Best_m" and "How_many_imputation_to_deal_with_missing" as the ensemble stage
// reads them, fractions cut. ns and nm go to the final report; missingrepeat is carried. Set by
// main_vort3.
extern int ns;
extern int nm;
extern int missingrepeat;

// Replicates, and permuted data sets to run the analysis on. Set by permutation_simulation1.
extern int repeat;
extern int permutation;

// The base learners of the final model. Filled by permutation_simulation1, read by the report.
extern std::vector<output_information> base_learner;

}  // namespace vort
