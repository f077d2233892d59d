// vort run: the analysis of a study, all results in a directory.
#pragma once

#include <string>
#include <vector>

#include "cli/analysis_parameters.h"
#include "cli/input_options.h"

namespace CLI {
class App;
}

namespace vort {

struct RunOptions {
    InputOptions input;
    AnalysisParameters parameters;
    std::string out;       // directory of the results
    bool force = false;    // results that are there are replaced
    bool console = false;  // the engine's standard output, as a file
    bool gzip = false;     // markers.tsv compressed
    bool quiet = false;    // no progress
    int threads = 1;

    // Doors for comparisons and for those who work in steps.
    bool fdr_report = false;
    int clustering = 0;
    std::string save_prepared;
    std::string prepared;

    std::vector<std::string> words;  // the command line, for the log
};

// Adds the command; its options are stored in `options`, whose values are the defaults.
CLI::App* add_run_command(CLI::App& app, RunOptions& options);

// Throws InputError, Stop, CLI::ValidationError and what the library throws.
void run_study(const RunOptions& options);

}  // namespace vort
