// vort report: report.html anew from the other results in a directory.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace vort {

CLI::App* add_report_command(CLI::App& app, std::string& folder);

// Throws as run_study() does.
void make_report(const std::string& folder);

}  // namespace vort
