// vort run: the analysis of a study in binary files.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vort {

struct RunOptions {
    std::string prefix;  // of the .bed, .bim and .fam files
    std::string out;     // directory of the results
    bool force = false;  // results that are there are replaced
    int permutations = 200;
    int best_m = 100;
    int max_retain = 10;
    double fdr = 0.75;
    int clustering = 0;
    bool fdr_report = false;
    std::string save_prepared;
    std::string prepared;
    int threads = 1;
};

// Adds the command; its options are stored in `options`, whose values are the defaults.
CLI::App* add_run_command(CLI::App& app, RunOptions& options);

// Returns the exit status.
int run_study(const RunOptions& options);

}  // namespace vort
