#include "vort/working_directory.h"

#include <array>
#include <charconv>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "common/directory_lock.h"
#include "common/odd_files.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "genotypes/text_data_set.h"
#include "vort/report_files.h"

namespace vort {

namespace {

// Removed: an earlier form of the program leaves them when it is killed.
constexpr std::array kIntermediateNames = {"beta.txt", "output_X_Y.txt"};
constexpr const char* kMarkerTableName = "Chromosome_SNP_Name.txt";

void lock_or_stop(const DirectoryLock& lock, Diagnostics& diagnostics) {
    if (lock.error() != 0) {
        diagnostics.say("directories without a lock", "vort", 0,
                        std::string("this directory cannot be locked (") +
                            std::strerror(lock.error()) +
                            "); a second run here would not be noticed");
    }
    if (lock.held()) return;
    diagnostics.say("runs in the same directory", "vort", 0,
                    "another run is at work in this directory; wait for it, or use another one");
    stop("", 1);
}

// Whatever a run writes or removes, an input is not among it, under whatever name it is there.
void require_inputs_apart(const std::string& data_set, Diagnostics& diagnostics) {
    const std::array<std::string, 3> inputs = {std::string(kParameterFileName), kMarkerTableName,
                                               data_set};
    std::vector<std::string> written(kReportNames.begin(), kReportNames.end());
    for (const char* name : kReportNames) written.push_back(unfinished_name(name));
    written.insert(written.end(), kIntermediateNames.begin(), kIntermediateNames.end());
    for (const std::string& input : inputs) {
        for (const std::string& name : written) {
            std::error_code absent;
            if (!std::filesystem::equivalent(input, name, absent) || absent) continue;
            diagnostics.say("inputs that would be lost", input, 0,
                            "would be lost, since a run writes or removes " + name +
                                "; give the input another name");
            stop("", 1);
        }
    }
}

void clear_outputs(Diagnostics& diagnostics) {
    clear_reports("", diagnostics);
    for (const char* name : kIntermediateNames) remove_file(name);
}

void check_settings(const Settings& settings, const Console& console, Diagnostics& diagnostics) {
    Transcript out(true);
    print_warnings(settings.file, out);
    console(out.text());
    if (settings.file.found) diagnose_parameters(settings.file, diagnostics);
    check_best_markers(settings.screening);
}

StudyData load_study(const Settings& settings, int threads, const Console& console,
                     Diagnostics& diagnostics) {
    const ScreeningSettings& wanted = settings.screening;
    tell_pipe(kMarkerTableName, diagnostics);
    MarkerTable table = MarkerTable::from_file(kMarkerTableName, wanted.markers);
    table.check(diagnostics);
    Transcript out(true);
    DataSet data = load_text_data_set(
        {wanted.input, wanted.individuals, wanted.markers, wanted.head, wanted.record}, threads,
        diagnostics, out);
    console(out.text());
    return {std::move(data.genotypes), std::move(data.phenotypes), std::move(table)};
}

// Without memory: the reports are there.
void tell_time(long seconds, const Console& console) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), seconds).ptr;
    *end = '\n';
    console("Total time=");
    console({digits.data(), end + 1});
}

}  // namespace

void analyse_working_directory(int threads, const Console& console, Diagnostics& diagnostics) {
    const std::time_t start = std::time(nullptr);
    const DirectoryLock lock(".");
    lock_or_stop(lock, diagnostics);
    const Settings settings = settings_of(read_parameter_file(diagnostics));
    require_inputs_apart(settings.screening.input, diagnostics);
    clear_outputs(diagnostics);
    check_settings(settings, console, diagnostics);
    AnalysisOptions options;
    options.threads = threads;
    check_sizes(settings, options, false, diagnostics);
    StudyData study = load_study(settings, threads, console, diagnostics);
    analyse(study, settings, options, console, diagnostics);
    tell_time(static_cast<long>(std::time(nullptr) - start), console);
}

}  // namespace vort
