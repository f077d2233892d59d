// vort merge: the results of a plan whose tasks are finished.
#pragma once

#include "cli/run_options.h"

namespace vort {

// Its options are the folder, --force, --threads and --quiet.
CLI::App* add_merge_command(CLI::App& app, RunOptions& options);

// Throws as run_study() does.
void merge_run(const RunOptions& options);

}  // namespace vort
