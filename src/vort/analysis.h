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
#include "numeric/clusters.h"
#include "screening/screening.h"

namespace vort {

// What an analysis works on.
struct StudyData {
    Genotypes genotypes;
    std::vector<short> phenotypes;  // 1 is a case, all else a control
    MarkerTable markers;
    Clusters clusters = {};  // of the individuals, that permutations keep to; none: they are free
};

struct AnalysisOptions {
    int threads = 1;
    bool console = true;  // whether console text is wanted at all
    std::string folder;   // in front of every file written; "" or ending with a slash
};

using Console = std::function<void(std::string_view)>;

// Screens, models and writes "P_value.txt" and "Final_result.txt", both when all is done. Console
// text goes to `console` as it comes. Throws Stop where the run ends early, with status 1 where a
// file could not be written.
Result analyse(StudyData& study, const Settings& settings, const AnalysisOptions& options,
               const Console& console, Diagnostics& diagnostics);

// What a run is made of beside its two stages, for runs that are cut into parts, too.

// How much a screening holds at once, and how many of each data set's markers it keeps.
ScreeningOptions screening_options(const StudyData& study, const Settings& settings,
                                   const AnalysisOptions& options);
// What stands on the console between the stages. Stops where pairs could not be numbered.
void introduce_ensemble(const Settings& settings, Diagnostics& diagnostics, Transcript& out);
// The reports, and what the console shows of them; earlier ones are replaced.
void write_final_reports(const StudyData& study, const Settings& settings, const Result& result,
                         const AnalysisOptions& options, const Console& console,
                         Diagnostics& diagnostics);

// Bytes that an analysis of so many data sets takes. `mapped`: genotypes lie in a file, and need
// none.
double analysis_bytes(const Settings& settings, const AnalysisOptions& options, bool mapped,
                      double data_sets);

// Ends the run, told on standard error, where the sizes cannot be analysed: none, or more than the
// memory that this process may use. `mapped`: genotypes lie in a file, and need no memory.
void check_sizes(const Settings& settings, const AnalysisOptions& options, bool mapped,
                 Diagnostics& diagnostics);

}  // namespace vort
