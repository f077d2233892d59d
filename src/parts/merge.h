// From parts to the results of a run.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "ensemble/result.h"
#include "parts/part_folder.h"
#include "results/run_record.h"
#include "vort/analysis.h"

namespace vort {

struct MergedRun {
    Result result;
    RunRecord record;
    std::string fdr_report;  // empty where none was asked for
};

// Writes the two reports; the console gets what a run in one process writes to it. All parts must
// be there; they are read one at a time.
MergedRun merge_parts(const Parts& parts, std::span<const Task> tasks, const StudyData& study,
                      const Settings& settings, const AnalysisOptions& options,
                      const Console& console, Diagnostics& diagnostics);

}  // namespace vort
