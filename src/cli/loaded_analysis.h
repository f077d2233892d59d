// A study on its way to an analysis, whichever command asked for it.
#pragma once

#include "cli/input_guard.h"
#include "cli/run_options.h"
#include "cli/terminal.h"
#include "cli/time_estimate.h"
#include "common/settings.h"
#include "parts/task.h"
#include "study/holdout.h"
#include "study/study.h"
#include "vort/analysis.h"

namespace vort {

struct LoadedAnalysis {
    StudyFormat format = StudyFormat::kBed;
    Study study;     // names and account; its genotypes are in `data`
    StudyData data;  // as it is analysed
    StudyParameters parameters;
    Settings settings;
    std::optional<HeldBack> held_back;  // from it, to try the model on
};

// Reads the study and tells what was left out. Throws InputError.
LoadedAnalysis load_analysis(const RunOptions& options, const StudyRequest& request,
                             Terminal& terminal);

// From a study and its parameters as they stand in a plan; `genotypes` are mapped.
LoadedAnalysis loaded_analysis(const RunOptions& options, StudyFormat format, Study study,
                               Genotypes genotypes, const StudyParameters& parameters);

AnalysisOptions analysis_options(const RunOptions& options, const std::string& folder);

// What so many of its data sets cost in each stage, for those who wait.
RunSize run_size(const LoadedAnalysis& analysis, const RunOptions& options);

}  // namespace vort
