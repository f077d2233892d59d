// The end of a run: from its parts to the files in its folder.
#pragma once

#include <string>

#include "cli/loaded_analysis.h"
#include "cli/result_folder.h"
#include "cli/run_log.h"
#include "parts/merge.h"

namespace vort {

// What the results take on the disk, or somewhat more.
double result_bytes(const LoadedAnalysis& analysis, const RunOptions& options);

// Merges the parts and writes everything but run.log; returns the summary.
std::string write_outcome(const LoadedAnalysis& analysis, const Parts& parts,
                          std::span<const Task> tasks, const RunOptions& options,
                          const ResultFolder& folder, const Stopwatch& watch, Terminal& terminal,
                          Diagnostics& diagnostics);

void write_log(RunLog& log, const Stopwatch& watch, const std::string& summary,
               const ResultFolder& folder, const Terminal& terminal, Diagnostics& diagnostics);

}  // namespace vort
