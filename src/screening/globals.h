// State of the screening stage. Set by the run driver before the first screening unless said
// otherwise; the screening reads it.
#pragma once

#include <string>

namespace vort {

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

// 1 while observed data sets are screened, 0 while permuted ones are; the FDR reports read it.
extern int orginal_data;

// 1: screen from the data set in memory; otherwise from prepared files. Read by the run driver.
extern int direct_calculate;

// 1 once `X` and `Y` are there. Set by the first screening.
extern int exist_X_Y_data;

// Genotypes, `Sample` rows of `Marker` codes: 0, 1, 2 copies of one allele, -1 missing. Both
// indexes from 0. Loaded and owned by the screening; freed by release_data_set.
extern char** X;

// Phenotypes, `Sample` + 1 elements (the last is spare): 1 is a case, all else a control. The run
// driver shuffles them between screenings.
extern short* Y;

// Numbers of controls [0] and cases [1] in the data set file. Set by read_data.
extern int samplesize[2];

// The models' names as printed, in the order of their numbers.
extern const char* const modelname[5];

// Share of cases, and of controls, that may miss a marker's genotype before the marker is dropped.
extern double not_over_missing_marker_drop_ratio;

// Switches that no parameter turns on: FDR reports, and the writing of prepared files.
extern int write_FDR_result;
extern int save_pre;

// Prefix of the names of prepared files.
extern std::string Datapath;

}  // namespace vort
