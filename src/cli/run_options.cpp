#include "cli/run_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

#include "cli/ranges.h"

namespace vort {

namespace {

constexpr const char* kOutput = "Output";

// They decide where and how, not what.
constexpr std::array<std::string_view, 8> kPassing = {"help",    "out",   "force", "resume",
                                                      "threads", "quiet", "tasks", "extend"};

}  // namespace

void add_thread_option(CLI::App& command, int& threads) {
    command
        .add_option("--threads", threads,
                    "threads; any number gives the same results [default: all processors]")
        ->type_name("N")
        ->transform(whole(1, 1024))
        ->group("Resources");
}

void add_quiet_option(CLI::App& command, bool& quiet) {
    command.add_flag("--quiet", quiet, "no progress on standard error")->group(kOutput);
}

void add_run_options(CLI::App& command, RunOptions& options) {
    add_input_options(command, options.input);
    add_within_options(command, options.input);
    add_analysis_options(command, options.parameters);
    command.add_flag("--force", options.force, "replace results that are there")->group(kOutput);
    command.add_flag("--gzip", options.gzip, "markers.tsv.gz instead of markers.tsv")
        ->group(kOutput);
    command
        .add_flag("--console", options.console,
                  "console.txt too: what the bare vort writes to its standard output")
        ->group(kOutput);
    command
        .add_flag("--fdr-report", options.fdr_report,
                  "FDR_results.txt too: the observed data set's markers by false discovery rate")
        ->group(kOutput);
    command
        .add_option("--holdout", options.holdout,
                    "hold this share of cases and of controls back, and try the model on them")
        ->type_name("X")
        ->check(proper_share())
        ->group("Trial on unseen individuals");
    add_quiet_option(command, options.quiet);
    add_thread_option(command, options.threads);
    command
        .add_option("--clustering", options.clustering,
                    "of a pair's genotype cells: 0 k-means of their means; 1 to 4 alternatives "
                    "[default: 0]")
        ->type_name("K")
        ->transform(whole(0, 4))
        ->group("Steps and comparisons");
}

GivenOptions given_options(const CLI::App& command) {
    GivenOptions given;
    for (const CLI::Option* option : command.get_options()) {
        if (option->count() == 0) continue;
        const std::string& name = option->get_lnames().front();
        if (std::ranges::find(kPassing, name) != kPassing.end()) continue;
        const bool flag = option->get_items_expected_max() == 0;
        given.emplace_back(name, flag ? "" : option->as<std::string>());
    }
    return given;
}

}  // namespace vort
