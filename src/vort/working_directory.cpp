#include "vort/working_directory.h"

#include <ctime>

#include "common/directory_lock.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "genotypes/text_data_set.h"

namespace vort {

namespace {

// What an earlier form of the program leaves when it is killed.
void remove_intermediate_files() {
    remove_file("beta.txt");
    remove_file("output_X_Y.txt");
}

void lock_or_stop(const DirectoryLock& lock, Diagnostics& diagnostics) {
    if (lock.held()) return;
    diagnostics.say("runs in the same directory", "vort", 0,
                    "another run is at work in this directory; wait for it, or use another one");
    stop("", 1);
}

Settings read_settings(const Console& console, Diagnostics& diagnostics) {
    Settings settings = settings_of(read_parameter_file(diagnostics));
    Transcript out(true);
    print_warnings(settings.file, out);
    console(out.text());
    if (settings.file.found) diagnose_parameters(settings.file, diagnostics);
    check_best_markers(settings.screening);
    return settings;
}

StudyData load_study(const Settings& settings, int threads, const Console& console,
                     Diagnostics& diagnostics) {
    const ScreeningSettings& wanted = settings.screening;
    MarkerTable table = MarkerTable::from_file("Chromosome_SNP_Name.txt", wanted.markers);
    table.check(diagnostics);
    Transcript out(true);
    DataSet data = load_text_data_set(
        {wanted.input, wanted.individuals, wanted.markers, wanted.head, wanted.record}, threads,
        diagnostics, out);
    console(out.text());
    return {std::move(data.genotypes), std::move(data.phenotypes), std::move(table)};
}

}  // namespace

void analyse_working_directory(int threads, const Console& console, Diagnostics& diagnostics) {
    const std::time_t start = std::time(nullptr);
    const DirectoryLock lock(".");
    lock_or_stop(lock, diagnostics);
    const Settings settings = read_settings(console, diagnostics);
    AnalysisOptions options;
    options.threads = threads;
    check_sizes(settings, options, false, diagnostics);
    StudyData study = load_study(settings, threads, console, diagnostics);
    remove_intermediate_files();
    Observer nobody;
    analyse(study, settings, options, console, diagnostics, nobody);
    Transcript end(true);
    end << "Total time=" << static_cast<long>(std::time(nullptr) - start) << '\n';
    console(end.text());
}

}  // namespace vort
