#include "cli/report_command.h"

#include <CLI/CLI.hpp>

#include "cli/interruption.h"
#include "cli/result_folder.h"
#include "cli/results.h"
#include "cli/terminal.h"
#include "common/input_error.h"

namespace vort {

namespace {

constexpr const char* kReport[] = {"report.html"};

}  // namespace

CLI::App* add_report_command(CLI::App& app, std::string& folder) {
    CLI::App* const report =
        app.add_subcommand("report", "make report.html anew from the results in a directory");
    report->add_option("DIR", folder, "where vort run left its results")->required();
    return report;
}

void make_report(const std::string& path) {
    // Before the folder is looked at as one of results to be.
    read_model(path + "/model.json");
    Terminal terminal;
    ResultFolder folder(path, kReport, true);
    const Interruption interruption([&] { folder.discard(); });
    Diagnostics diagnostics(terminal.errors());
    write_report_page(path + '/', folder.unfinished(), diagnostics);
    folder.publish();
    terminal.print("the report: " + path + "/report.html\n");
}

}  // namespace vort
