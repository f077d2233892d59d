#include "cli/command_line.h"

#include <sched.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string>

#include "cli/run_command.h"
#include "common/console.h"
#include "common/stop.h"
#include "math/matrix1.h"
#include "vort/working_directory.h"

namespace vort {

namespace {

constexpr int kMostThreads = 1024;

// Processors that this process may use.
int available_processors() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (::sched_getaffinity(0, sizeof set, &set) != 0) return 1;
    return std::max(CPU_COUNT(&set), 1);
}

// VORT_THREADS where it is a number of threads, else all processors.
int threads_of_environment(Diagnostics& diagnostics) {
    const char* const wanted = std::getenv("VORT_THREADS");
    if (wanted == nullptr || *wanted == '\0') return available_processors();
    char* end = nullptr;
    const long threads = std::strtol(wanted, &end, 10);
    if (*end == '\0' && threads >= 1 && threads <= kMostThreads) return static_cast<int>(threads);
    diagnostics.say("environment variables", "VORT_THREADS", 0,
                    std::string("a number of threads from 1 on was expected, not \"") + wanted +
                        "\"; all processors are used");
    return available_processors();
}

// Ends as problems of files, parameters and data do, after their message on standard output.
int run_bare() {
    Diagnostics diagnostics(std::cerr);
    StandardOutput output(diagnostics);
    try {
        analyse_working_directory(
            threads_of_environment(diagnostics), [&](std::string_view text) { output.write(text); },
            diagnostics);
        return 0;
    } catch (const Stop& stop) {
        output.write(stop.text);
        return stop.status;
    } catch (const math::matrix1_error& fault) {
        diagnostics.say("faults of the program", "vort", 0,
                        std::string("a fault in the program: ") + fault.what());
        return 1;
    } catch (const std::bad_alloc&) {
        diagnostics.say("ends for lack of resources", "vort", 0, "the memory does not suffice");
        return 1;
    } catch (const std::exception& problem) {
        diagnostics.say("ends for lack of resources", "vort", 0, problem.what());
        return 1;
    }
}

}  // namespace

int run_command_line(int argc, char** argv) {
    // A reader that goes away costs the console text, not the reports.
    std::signal(SIGPIPE, SIG_IGN);
    if (argc <= 1) return run_bare();
    CLI::App app(
        "Case-control association analysis: markers, pairs of markers, and a model of them\n"
        "with a permutation p-value. Without a command the study in the working directory\n"
        "is analysed (parameter.txt).");
    app.name("vort");
    app.require_subcommand(1);
    RunOptions run;
    run.threads = available_processors();
    CLI::App* const run_command = add_run_command(app, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return run_command->parsed() ? run_study(run) : 0;
}

}  // namespace vort
