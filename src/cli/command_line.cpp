#include "cli/command_line.h"

#include <sched.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <new>
#include <string>
#include <system_error>

#include "cli/exit_status.h"
#include "cli/import_command.h"
#include "cli/input_guard.h"
#include "cli/last_words.h"
#include "cli/merge_command.h"
#include "cli/nearest_name.h"
#include "cli/plan_command.h"
#include "cli/predict_command.h"
#include "cli/report_command.h"
#include "cli/run_command.h"
#include "cli/standard_streams.h"
#include "cli/status_command.h"
#include "cli/task_command.h"
#include "cli/version.h"
#include "common/characters.h"
#include "common/console.h"
#include "common/input_error.h"
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

// Ends as problems of files, parameters and data do, after their message on standard output. Throws
// std::bad_alloc.
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
        throw;
    } catch (const std::exception& problem) {
        diagnostics.say("ends for lack of resources", "vort", 0, problem.what());
        return 1;
    }
}

// All commands, and what they read from the command line.
class Commands {
  public:
    explicit Commands(std::vector<std::string> words) {
        app_.name("vort");
        app_.set_version_flag("--version", std::string("vort ") + kVersion);
        app_.require_subcommand(1);
        app_.get_formatter()->column_width(30);
        Diagnostics diagnostics(std::cerr);
        run_.threads = import_.threads = predict_.threads = threads_of_environment(diagnostics);
        task_.threads = merge_.threads = plan_.run.threads = run_.threads;
        run_.words = merge_.words = std::move(words);
        CLI::App* const run = add_run_command(app_, run_);
        CLI::App* const plan = add_plan_command(app_, plan_);
        commands_ = {{run, [this, run] { run_study(run_, given_options(*run)); }},
                     {plan, [this, plan] { plan_run(plan_, given_options(*plan)); }},
                     {add_task_command(app_, task_), [this] { work_on_task(task_); }},
                     {add_merge_command(app_, merge_), [this] { merge_run(merge_); }},
                     {add_status_command(app_, status_), [this] { show_status(status_); }},
                     {add_predict_command(app_, predict_), [this] { predict_study(predict_); }},
                     {add_import_command(app_, import_), [this] { import_study(import_); }},
                     {add_report_command(app_, report_), [this] { make_report(report_); }}};
    }

    CLI::App& app() { return app_; }

    void run() const {
        for (const auto& [command, work] : commands_) {
            if (!command->parsed()) continue;
            require_values(*command);
            work();
        }
    }

    // What was wrong with the command line, in one line.
    std::string misuse(const CLI::ParseError& error) const {
        const CLI::App* asked = &app_;
        for (const auto& [command, work] : commands_) {
            if (command->parsed()) asked = command;
        }
        std::string text = error.what();
        const std::vector<std::string> unknown = app_.remaining(true);
        if (!unknown.empty()) text = unknown_text(*asked, unknown.front());
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text + "; see vort " + (asked == &app_ ? "" : asked->get_name() + ' ') + "--help";
    }

  private:
    // An empty word is a variable that was not set, and would be the root of all files as a folder.
    static void require_values(const CLI::App& command) {
        for (const CLI::Option* option : command.get_options()) {
            if (std::ranges::find(option->results(), "") == option->results().end()) continue;
            throw CLI::ValidationError(option->get_name(), "is an empty word; a value expected");
        }
    }

    static std::string unknown_text(const CLI::App& asked, const std::string& word) {
        std::vector<std::string> names;
        for (const CLI::Option* option : asked.get_options()) {
            for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
        }
        for (const CLI::App* command :
             asked.get_subcommands([](const CLI::App*) { return true; })) {
            names.push_back(command->get_name());
        }
        const std::string near = nearest_name(word.substr(0, word.find('=')), names);
        return word + ": is unknown" + (near.empty() ? "" : "; did you mean " + near + "?");
    }

    struct Command {
        CLI::App* command;
        std::function<void()> work;
    };

    CLI::App app_{
        "Case-control association analysis: markers, pairs of markers, and a model of them\n"
        "with a permutation p-value. Without arguments the study in the working directory\n"
        "is analysed (parameter.txt)."};
    RunOptions run_;
    PredictOptions predict_;
    PlanOptions plan_;
    TaskOptions task_;
    RunOptions merge_;
    StatusOptions status_;
    ImportOptions import_;
    std::string report_;
    std::vector<Command> commands_;
};

int say(std::string text, int status) {
    make_visible(text);
    if (!text.empty()) std::cerr << "vort: " << text << '\n';
    return status;
}

// Throws std::bad_alloc.
int run_command(const Commands& commands) {
    try {
        commands.run();
        return kDone;
    } catch (const CLI::ParseError& error) {
        return say(commands.misuse(error), kMisused);
    } catch (const InputError& error) {
        return say(error.text, kUnusableInput);
    } catch (const Stop& stop) {
        return say(stop.text, kLackOfResources);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::system_error& problem) {
        const bool thread = problem.code() == std::errc::resource_unavailable_try_again;
        return say(problem.what() + std::string(thread ? "; no thread; try fewer --threads" : ""),
                   kLackOfResources);
    } catch (const std::exception& problem) {
        return say(problem.what(), kLackOfResources);
    }
}

// Help and version go to standard output.
int answer(const CLI::App& app, const CLI::ParseError& error) {
    app.exit(error);
    if (std::cout.flush()) return kDone;
    return say("standard output cannot be written", kLackOfResources);
}

int run_commands(int argc, char** argv) {
    Commands commands({argv, argv + argc});
    try {
        commands.app().parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return answer(commands.app(), error);
        return say(commands.misuse(error), kMisused);
    }
    return run_command(commands);
}

}  // namespace

int run_command_line(int argc, char** argv) {
    occupy_standard_streams();
    // A reader that goes away costs the console text, not the reports; a file that may not grow is
    // told as a full disk is.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    tell_shrunken_inputs();
    const int out_of_memory = argc <= 1 ? 1 : kLackOfResources;
    tell_lack_of_memory_at_any_end(out_of_memory);
    try {
        return argc <= 1 ? run_bare() : run_commands(argc, argv);
    } catch (const std::bad_alloc&) {
        tell_lack_of_memory();
        return out_of_memory;
    }
}

}  // namespace vort
