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
constexpr const char* kRead[] = {"model.json", "markers.tsv", "markers.tsv.gz", "permutations.tsv",
                                 "quantiles.tsv"};

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
    std::vector<std::string> inputs;
    for (const char* name : kRead) inputs.push_back(path + '/' + name);
    ResultFolder folder(path, kReport, true, inputs, terminal);
    const Interruption interruption([&] { folder.discard(); });
    Diagnostics diagnostics(terminal.errors());
    write_report_page(path + '/', folder.unfinished(), diagnostics);
    const std::string done = "the report: " + path + "/report.html\n";
    folder.publish();
    terminal.print(done);
}

}  // namespace vort
