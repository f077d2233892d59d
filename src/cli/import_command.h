// vort import: a study in any format as a directory that the bare vort reads.
#pragma once

#include <string>

#include "cli/analysis_parameters.h"
#include "cli/input_options.h"

namespace CLI {
class App;
}

namespace vort {

struct ImportOptions {
    InputOptions input;
    AnalysisParameters parameters;
    std::string out;
    bool force = false;
    int threads = 1;
};

CLI::App* add_import_command(CLI::App& app, ImportOptions& options);

// Throws as run_study() does.
void import_study(const ImportOptions& options);

}  // namespace vort
