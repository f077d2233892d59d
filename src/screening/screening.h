// Tests every marker of every data set and ranks them all; see the essay in screening.cpp.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "common/transcript.h"
#include "common/work_meter.h"
#include "common/workspaces.h"
#include "genotypes/genotypes.h"
#include "genotypes/marker_table.h"
#include "screening/phenotype_rows.h"
#include "screening/stretch_screening.h"

namespace vort {

// What a run may want of its screening beside the ranking.
struct ScreeningOptions {
    int threads = 1;
    int first_row = 0;          // of the phenotypes that is screened; those before it are not
    int data_set = 0;           // number of row 0 in its run
    bool transcript = true;     // the console's lists and rankings
    int kept = 0;               // best markers of each data set to be kept; at most all
    bool rank_all = false;      // the observed data set's complete ranking
    double batch_bytes = 32e6;  // for the smallest p-values of a batch of data sets

    TellWork work;

    std::string fdr_report;       // path of the observed data set's FDR report; none where empty
    std::string prepared_prefix;  // of prepared files of the best markers; none where empty
};

// What is left of one data set's screening.
struct ScreenedDataSet {
    std::vector<int> best;            // columns (from 0) by ascending p-value, `kept` of them
    double smallest_pvalue = 1;       // 1 where there is no marker
    std::span<const double> pvalues;  // of each column, the smallest of its models
    std::vector<int> ranking;         // of all columns; observed data set, where asked for
    Workspaces<Transcript>::Loan transcript;  // what the console shows of it
};

// Gets data sets by their numbers in the run, in this order, one at a time; not to be kept beyond
// the call, its p-values and its transcript are used again.
using TakeScreened = std::function<void(int d, ScreenedDataSet&& screened)>;

// Screens rows of `phenotypes`: cases and controls of row 0, which shuffling does not change.
// `table` names markers in the FDR report.
void screen_data_sets(const Genotypes& genotypes, const PhenotypeRows& phenotypes,
                      const MarkerTable& table, const ScreeningOptions& options,
                      Diagnostics& diagnostics, const TakeScreened& take);

// Data sets of a batch.
int data_sets_at_once(double markers, const ScreeningOptions& options);

// Memory for a batch that is small beside the genotypes, which are read once for each.
double batch_bytes_for(double individuals, double markers);

// Bytes that a screening takes beside its inputs.
double screening_bytes(double markers, double individuals, const ScreeningOptions& options);

}  // namespace vort
