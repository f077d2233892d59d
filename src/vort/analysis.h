// One whole analysis, from genotypes to reports, as a function of its inputs.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/diagnostics.h"
#include "common/settings.h"
#include "ensemble/result.h"
#include "genotypes/genotypes.h"
#include "genotypes/marker_table.h"

namespace vort {

// What an analysis works on.
struct StudyData {
    Genotypes genotypes;
    std::vector<short> phenotypes;  // 1 is a case, all else a control
    MarkerTable markers;
};

// A data set that is ranked. Not to be kept beyond the call.
struct ScreenedView {
    int data_set;   // 0 observed
    int data_sets;  // of the run
    double smallest_pvalue;
    int best;                         // its marker's column, from 0; -1 where there is none
    std::span<const double> pvalues;  // of each column, the smallest of its models
    std::span<const int> ranking;     // columns by rank; of the observed data set
};

// A data set that has its model.
struct ModelledView {
    int data_set;      // 0 observed
    int data_sets;     // of the run
    double statistic;  // S
    int learners;      // base learners in the model
};

enum class Stage { kScreen, kModel };

// What an analysis tells as it goes; none of it changes a result. Called in the order of the data
// sets, from one thread at a time.
class Observer {
  public:
    virtual ~Observer() = default;

    virtual void screened(const ScreenedView& /*screened*/) {}
    // How many data sets have been worked on in a stage, parts included. From any thread, one at a
    // time, also beside the others.
    virtual void working(Stage /*stage*/, double /*data_sets*/) {}
    virtual void modelled(const ModelledView& /*modelled*/) {}
};

struct AnalysisOptions {
    int threads = 1;
    bool console = true;         // whether console text is wanted at all
    std::string folder;          // in front of every file written; "" or ending with a slash
    bool rank_all = false;       // the observer gets the observed data set's complete ranking
    bool require_files = false;  // a report that cannot be written stops the run, with status 1
    bool fdr_report = false;     // writes "FDR_results.txt"
    std::string save_prepared;   // prefix of prepared files to be written; none where empty
    std::string prepared;        // prefix of prepared files to take rankings and phenotypes from
};

using Console = std::function<void(std::string_view)>;

// Screens, models and writes "P_value.txt" and "Final_result.txt". Console text goes to `console`
// as it comes. Throws Stop where the run ends early.
Result analyse(StudyData& study, const Settings& settings, const AnalysisOptions& options,
               const Console& console, Diagnostics& diagnostics, Observer& observer);

// Ends the run, told on standard error, where the sizes cannot be analysed: none, or more than the
// memory that this process may use. `mapped`: genotypes lie in a file, and need no memory.
void check_sizes(const Settings& settings, const AnalysisOptions& options, bool mapped,
                 Diagnostics& diagnostics);

}  // namespace vort
