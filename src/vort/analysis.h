// One whole analysis, from genotypes to reports, as a function of its inputs.
#pragma once

#include <functional>
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

// What an analysis tells as it goes; none of it changes a result. Called in the order of the data
// sets, from one thread at a time.
class Observer {
  public:
    virtual ~Observer() = default;

    // Data set d of `data_sets` is ranked; `best` is its best marker's column (from 0; -1: none).
    virtual void screened(int /*d*/, int /*data_sets*/, double /*smallest_pvalue*/, int /*best*/) {}
    // Permuted data set k of `permutations` has its statistic.
    virtual void modelled(int /*k*/, int /*permutations*/, double /*statistic*/) {}
};

struct AnalysisOptions {
    int threads = 1;
    bool console = true;        // whether console text is wanted at all
    std::string folder;         // in front of every file written; "" or ending with a slash
    bool fdr_report = false;    // writes "FDR_results.txt"
    std::string save_prepared;  // prefix of prepared files to be written; none where empty
    std::string prepared;       // prefix of prepared files to take rankings and phenotypes from
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
