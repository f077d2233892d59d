// The parameters of an analysis, from the command line, a study directory, or the defaults.
#pragma once

#include <optional>

#include "cli/terminal.h"
#include "study/study.h"

namespace CLI {
class App;
}

namespace vort {

// Why these: docs/power.md.
constexpr StudyParameters kDefaultParameters{
    .permutations = 200, .best_m = 100, .max_retain = 10, .fdr = 0.75};

struct AnalysisParameters {
    std::optional<int> permutations, best_m, max_retain;
    std::optional<double> fdr;
};

void add_analysis_options(CLI::App& command, AnalysisParameters& parameters);

// An option before what a study directory says, and that before the default; tells where Best_m is
// lowered to the number of markers.
StudyParameters parameters_for(const AnalysisParameters& given, const Study& study,
                               Terminal& terminal);

}  // namespace vort
