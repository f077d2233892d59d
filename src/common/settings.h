// What a run is asked to do, from "parameter.txt".
//
// The file is parsed once. Three stages take what concerns them from it, each by a rule of its own:
// the screening and the report cut a fraction, the builder of base learners rounds it, and each has
// its own defaults for what the file does not give. So the stages may see different numbers; where
// they contradict each other the ensemble stage says so and ends the run.
#pragma once

#include <string>

#include "common/parameter_file.h"

namespace vort {

// What the screening takes. Defaults are those of a file that gives nothing.
struct ScreeningSettings {
    int individuals = 547;       // "Sample_size"
    int markers = 541325;        // "Number_of_markers"
    int permutations = 100;      // "Number_of_permutation"
    int imputations = 1;         // "How_many_imputation_to_deal_with_missing"; no effect
    int head = 0;                // "Head": 1 where the data set begins with a header line
    int record = 0;              // "Recorder_num": 1 where its rows begin with an identifier
    int best_markers = 1000;     // "Best_m": markers in a prepared file
    int best_markers_given = 0;  // the same, 0 where the file does not give it
    std::string input;           // "Inputfile", at most 99 characters
};

// What the final report takes.
struct ReportSettings {
    int individuals = 400;  // "Sample_size"
    int markers = 20;       // "Best_m"
    int imputations = 10;   // "How_many_imputation_to_deal_with_missing"; no effect
};

// What the builder of base learners takes.
struct BuilderSettings {
    int individuals = 400;     // n, "Sample_size"
    int markers = 20;          // m, "Best_m"
    int max_retain = 1;        // "Max_retain": marker sets kept of each size
    int permutations = 0;      // "Number_of_permutation"
    double fdr_cutoff = 0.75;  // "FDR_cutoff_for_candidate_locus_combinations" where in (0, 1]
    double alpha = 0.05;       // of the quick tests
    int clustering = 0;        // of a pair's cells; 1 to 4 are alternatives that no file selects

    int usable_markers() const { return markers > 0 ? markers : 0; }
    // Pairs are searched, too.
    bool takes_pairs() const { return markers >= 1; }
};

struct Settings {
    ParameterFile file;
    ScreeningSettings screening;
    ReportSettings report;
    BuilderSettings builder;
};

// Fills the stages' views from the file.
Settings settings_of(ParameterFile file);

// Ends the run, with a message, where "Best_m" exceeds the number of markers.
void check_best_markers(const ScreeningSettings& settings);

}  // namespace vort
