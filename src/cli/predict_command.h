// vort predict: the model of an earlier run, applied to other individuals.
#pragma once

#include <string>

#include "cli/input_options.h"

namespace CLI {
class App;
}

namespace vort {

struct PredictOptions {
    InputOptions input;
    std::string model;  // model.json, or the directory that it is in
    std::string out;    // the table
    bool force = false;
    int threads = 1;
};

CLI::App* add_predict_command(CLI::App& app, PredictOptions& options);

// Throws as run_study() does.
void predict_study(const PredictOptions& options);

}  // namespace vort
