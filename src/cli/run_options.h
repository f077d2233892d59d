// What a run is asked to do; vort plan takes the same.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/analysis_parameters.h"
#include "cli/input_options.h"

namespace vort {

struct RunOptions {
    InputOptions input;
    AnalysisParameters parameters;
    std::string out;       // directory of the results
    bool force = false;    // results that are there are replaced
    bool resume = false;   // goes on with what an earlier run has begun
    bool console = false;  // the engine's standard output, as a file
    bool gzip = false;     // markers.tsv compressed
    bool quiet = false;    // no progress
    int threads = 1;
    std::optional<double> holdout;  // share of the individuals that the model is tried on

    // Doors for comparisons and for those who work in steps.
    bool fdr_report = false;
    int clustering = 0;
    std::string save_prepared;
    std::string prepared;

    std::vector<std::string> words;  // the command line, for the log
};

// All but those that concern one process: --out, --resume and prepared files. Their values go to
// `options`, which outlives the command.
void add_run_options(CLI::App& command, RunOptions& options);
// How a process does its work, for any command that analyses.
void add_thread_option(CLI::App& command, int& threads);
void add_quiet_option(CLI::App& command, bool& quiet);

// The options that were given and decide about results, name and value.
using GivenOptions = std::vector<std::pair<std::string, std::string>>;
GivenOptions given_options(const CLI::App& command);

}  // namespace vort
