#include "cli/run_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "common/directory_lock.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "genotypes/plink_files.h"
#include "vort/analysis.h"

namespace vort {

namespace {

constexpr int kUnusableInput = 3;
constexpr int kLackOfResources = 4;

// The parameter file that describes the run, as a study directory would have it.
std::string parameter_text(const RunOptions& options, int individuals, int markers) {
    Transcript text(true);
    text << "Inputfile\t\t\t\t\tdat1.txt\n"
         << "Head\t\t\t\t\t\t\t1\n"
         << "Recorder_num\t\t\t\t\t1\n"
         << "Sample_size\t\t\t\t\t" << individuals << '\n'
         << "Number_of_markers\t\t\t" << markers << '\n'
         << "Symbol_of_missing_Gentype\t-1\n"
         << "Max_retain\t\t\t\t\t" << options.max_retain << '\n'
         << "FDR_cutoff_for_candidate_locus_combinations\t" << general(options.fdr) << '\n'
         << "Number_of_permutation\t\t" << options.permutations << '\n'
         << "How_many_imputation_to_deal_with_missing\t\t\t10\n"
         << "Best_m\t\t\t\t\t\t" << options.best_m << '\n';
    return std::string(text.text());
}

// A file's numbers go through single precision; the sizes of a study must not.
Settings settings_for(const RunOptions& options, int individuals, int markers) {
    Settings settings =
        settings_of(parse_parameters(parameter_text(options, individuals, markers)));
    settings.screening.individuals = individuals;
    settings.report.individuals = individuals;
    settings.builder.individuals = individuals;
    settings.screening.markers = markers;
    settings.builder.clustering = options.clustering;
    return settings;
}

// Tells how far a run is, a line for every tenth of each stage.
class PlainProgress : public Observer {
  public:
    void screened(const ScreenedView& view) override {
        tell("screened", view.data_set + 1, view.data_sets);
    }
    void modelled(const ModelledView& view) override {
        tell("modelled", view.data_set + 1, view.data_sets);
    }

  private:
    static void tell(const char* what, int done, int all) {
        const auto tenths = [all](int count) { return 10L * count / all; };
        if (tenths(done) == tenths(done - 1)) return;
        std::cerr << "vort: " << what << ": " << done << " of " << all << '\n';
    }
};

void make_folder(const RunOptions& options) {
    std::error_code failure;
    std::filesystem::create_directories(options.out, failure);
    if (!std::filesystem::is_directory(options.out)) {
        throw InputError{options.out +
                         ": cannot be made; a directory for the results was expected"};
    }
}

constexpr const char* kResults[] = {"P_value.txt", "Final_result.txt"};

void require_no_results(const RunOptions& options) {
    for (const char* name : kResults) {
        const std::filesystem::path path = std::filesystem::path(options.out) / name;
        std::error_code failure;
        if (options.force || !std::filesystem::exists(path, failure)) continue;
        throw InputError{path.string() +
                         ": is there already; name another directory, or replace it by --force"};
    }
}

// So that none of another study is left where the run ends early.
void remove_results(const RunOptions& options) {
    for (const char* name : kResults) remove_file(options.out + '/' + name);
}

void analyse_study(RunOptions options, Diagnostics& diagnostics) {
    make_folder(options);
    const DirectoryLock lock(options.out);
    if (!lock.held()) {
        throw InputError{options.out + ": another run is at work there; name another directory"};
    }
    require_no_results(options);
    BedStudy bed =
        load_bed(options.prefix + ".bed", options.prefix + ".bim", options.prefix + ".fam");
    const int individuals = bed.genotypes.individuals();
    const int markers = bed.genotypes.markers();
    if (options.best_m > markers) {
        std::cerr << "vort: --best-m " << options.best_m << " is lowered to the " << markers
                  << " markers of the study\n";
        options.best_m = markers;
    }
    const Settings settings = settings_for(options, individuals, markers);
    AnalysisOptions analysis;
    analysis.threads = options.threads;
    analysis.console = false;
    analysis.folder = options.out + '/';
    analysis.fdr_report = options.fdr_report;
    if (!options.save_prepared.empty()) {
        std::filesystem::create_directories(options.save_prepared);
        analysis.save_prepared = options.save_prepared + '/';
    }
    if (!options.prepared.empty()) analysis.prepared = options.prepared + '/';
    check_sizes(settings, analysis, true, diagnostics);
    remove_results(options);
    StudyData study{std::move(bed.genotypes), std::move(bed.phenotypes),
                    MarkerTable::from_markers(bed.markers)};
    PlainProgress progress;
    const Result result = analyse(
        study, settings, analysis, [](std::string_view) {}, diagnostics, progress);
    std::cout << individuals << " individuals, " << markers << " markers\n"
              << result.learners.size() << " base learners in the model\n"
              << "overall p-value " << general(result.pvalue) << "\nresults in " << options.out
              << '\n';
}

}  // namespace

CLI::App* add_run_command(CLI::App& app, RunOptions& options) {
    CLI::App* const run = app.add_subcommand("run", "Analyse a study: all results in a directory");
    run->get_formatter()->column_width(32);
    run->add_option("--bfile", options.prefix, "PREFIX.bed, PREFIX.bim and PREFIX.fam")
        ->type_name("PREFIX")
        ->required()
        ->group("Input");
    run->add_option("--prepared", options.prepared,
                    "take rankings and phenotypes from DIR, as --save-prepared left them")
        ->type_name("DIR")
        ->group("Input");
    run->add_option("--out", options.out, "directory of the results")
        ->type_name("DIR")
        ->required()
        ->group("Output");
    run->add_flag("--force", options.force, "replace results that are there")->group("Output");
    run->add_flag("--fdr-report", options.fdr_report,
                  "list the markers of the observed data set by false discovery rate")
        ->group("Output");
    run->add_option("--save-prepared", options.save_prepared,
                    "keep rankings and phenotypes of all data sets in DIR")
        ->type_name("DIR")
        ->group("Output");
    run->add_option("--permutations", options.permutations, "permuted data sets")
        ->capture_default_str()
        ->check(CLI::Range(0, 1000000))
        ->group("Analysis");
    run->add_option("--best-m", options.best_m, "best markers that are searched, pairs included")
        ->capture_default_str()
        ->check(CLI::Range(1, 65536))
        ->group("Analysis");
    run->add_option("--max-retain", options.max_retain, "marker sets kept of each size")
        ->capture_default_str()
        ->check(CLI::Range(0, 1000000))
        ->group("Analysis");
    run->add_option("--fdr", options.fdr, "cut-off of the step-up rules for marker sets")
        ->capture_default_str()
        ->check(CLI::Range(1e-6, 1.0))
        ->group("Analysis");
    run->add_option("--clustering", options.clustering,
                    "of a pair's genotype cells: 0 k-means of their means; 1 to 4 alternatives")
        ->capture_default_str()
        ->check(CLI::Range(0, 4))
        ->group("Analysis");
    run->add_option("--threads", options.threads,
                    "threads; the results are the same for any number")
        ->capture_default_str()
        ->check(CLI::Range(1, 1024))
        ->group("Resources");
    return run;
}

int run_study(const RunOptions& options) {
    Diagnostics diagnostics(std::cerr);
    try {
        analyse_study(options, diagnostics);
        return 0;
    } catch (const InputError& error) {
        std::cerr << "vort: " << error.text << '\n';
        return kUnusableInput;
    } catch (const Stop& stop) {
        if (!stop.text.empty()) std::cerr << "vort: " << stop.text << '\n';
        return kLackOfResources;
    } catch (const std::exception& problem) {
        std::cerr << "vort: " << problem.what() << '\n';
        return kLackOfResources;
    }
}

}  // namespace vort
