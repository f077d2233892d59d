// vort status: how far a plan's tasks are.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vort {

struct StatusOptions {
    std::string folder;
    bool json = false;
};

CLI::App* add_status_command(CLI::App& app, StatusOptions& options);

// Throws as run_study() does.
void show_status(const StatusOptions& options);

}  // namespace vort
