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
constexpr int kUsualPermutations = 999;
constexpr int kUsualBestM = 1000;
constexpr int kUsualMaxRetain = 10;
// Of the best m of M markers, times m / M: what is kept of single markers are then those that pass
// the rule among all markers.
constexpr double kUsualFdr = 0.1;

struct AnalysisParameters {
    std::optional<int> permutations, best_m, max_retain;
    std::optional<double> fdr;
};

void add_analysis_options(CLI::App& command, AnalysisParameters& parameters);

// An option before what a study directory says, and that before the default. Best_m is lowered to
// the number of markers, which is told where somebody asked for more.
StudyParameters parameters_for(const AnalysisParameters& given, const Study& study,
                               Terminal& terminal);

}  // namespace vort
