// vort run: the analysis of a study, all results in a directory.
//
// It plans, works on one task after the other, and merges, as vort plan, task and merge do, in one
// process. What it has finished stays with its plan until the results are there, so that a run
// which is killed goes on where it was.
#pragma once

#include "cli/run_options.h"

namespace CLI {
class App;
}

namespace vort {

// Adds the command; its options are stored in `options`, whose values are the defaults.
CLI::App* add_run_command(CLI::App& app, RunOptions& options);

// `given`: those of `options` that stood on the command line. Throws InputError, Stop,
// CLI::ValidationError and what the library throws.
void run_study(RunOptions options, const GivenOptions& given);

}  // namespace vort
