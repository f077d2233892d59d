#include "cli/run_command.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>

#include "cli/account.h"
#include "cli/checksums.h"
#include "cli/input_guard.h"
#include "cli/interruption.h"
#include "cli/progress.h"
#include "cli/ranges.h"
#include "cli/result_folder.h"
#include "cli/results.h"
#include "cli/run_log.h"
#include "cli/summary.h"
#include "cli/version.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "screening/marker_counts.h"
#include "screening/prepared_file.h"
#include "study/study_directory.h"

namespace vort {

namespace {

// A file's numbers go through single precision; the sizes of a study must not.
Settings settings_for(const StudyParameters& parameters, int clustering, int individuals,
                      int markers) {
    Settings settings =
        settings_of(parse_parameters(parameter_text(parameters, individuals, markers)));
    settings.screening.individuals = individuals;
    settings.report.individuals = individuals;
    settings.builder.individuals = individuals;
    settings.screening.markers = markers;
    settings.builder.clustering = clustering;
    return settings;
}

// The lines that the bare program writes to its standard output.
class ConsoleFile {
  public:
    ConsoleFile(const std::string& path, bool wanted, Diagnostics& diagnostics) {
        if (!wanted) return;
        file_ = std::make_unique<OutputFile>(path, OutputFile::Mode::kTruncate, diagnostics);
        write("read data is finished\n");
    }
    void write(std::string_view text) {
        if (file_) *file_ << text;
    }
    void end(double seconds) {
        if (!file_) return;
        write("Total time=" + std::to_string(static_cast<long>(seconds)) + '\n');
        if (!file_->close()) stop("", 1);
    }

  private:
    std::unique_ptr<OutputFile> file_;
};

// One run; the members stand in the order in which they come to be.
class Run {
  public:
    explicit Run(const RunOptions& options)
        : options_(options),
          request_(study_request(options.input)),
          folder_(options.out, kRunResults, options.force),
          interruption_([this] {
              terminal_.clear_progress();
              folder_.discard();
          }),
          diagnostics_(terminal_.errors()) {
        request_.threads = options.threads;
        log_.command = options.words;
        log_.threads = options.threads;
    }

    void run() {
        load();
        check();
        analyse_data();
        write_tables();
        finish();
    }

  private:
    void load();
    void check();
    void require_prepared() const;
    double result_bytes() const;
    AnalysisOptions analysis_options() const;
    RunSize size() const;
    void analyse_data();
    void write_tables();
    void tell_untested(const MarkerRows& rows, std::span<const int> selected);
    void finish();

    const RunOptions& options_;
    StudyRequest request_;
    Terminal terminal_;
    ResultFolder folder_;
    Interruption interruption_;
    Diagnostics diagnostics_;
    Stopwatch watch_;
    RunLog log_;

    Study study_;
    StudyData data_;
    StudyParameters parameters_;
    Settings settings_;
    InputGuard inputs_;
    std::unique_ptr<Checksums> checksums_;
    std::unique_ptr<RunRecorder> recorder_;
    Result result_;
    std::string summary_;
};

void Run::load() {
    watch_.begin("reading the study");
    study_ = load_study(request_);
    tell_account(study_, terminal_);
    parameters_ = parameters_for(options_.parameters, study_, terminal_);
    settings_ = settings_for(parameters_, options_.clustering, study_.genotypes.individuals(),
                             study_.genotypes.markers());
    data_ = {std::move(study_.genotypes), study_.phenotypes,
             MarkerTable::from_markers(study_.markers)};
    inputs_ = InputGuard(study_.inputs);
    checksums_ = std::make_unique<Checksums>(study_.inputs);
}

void Run::check() {
    check_sizes(settings_, analysis_options(), data_.genotypes.is_mapped(), diagnostics_);
    folder_.require_room(result_bytes());
    if (!options_.prepared.empty()) require_prepared();
}

// Prepared files of another study would be taken as this one's.
void Run::require_prepared() const {
    for (int d = 0; d <= parameters_.permutations; ++d) {
        const std::string path = prepared_file_name(options_.prepared + '/', d);
        if (!std::filesystem::exists(path)) {
            input_error(path, 0,
                        "is not there; a file for each data set expected; make them by "
                        "--save-prepared");
        }
        require_prepared_for(path, data_.phenotypes, parameters_.best_m, data_.genotypes.markers(),
                             d == 0);
    }
}

// Somewhat above what they come to.
double Run::result_bytes() const {
    constexpr double kPage = 2e6;
    constexpr double kMarkerLine = 250;
    constexpr double kConsoleLine = 60;
    const double markers = data_.genotypes.markers();
    const double data_sets = parameters_.permutations + 1.0;
    return kPage + kMarkerLine * (markers + data_sets) +
           (options_.console ? kConsoleLine * markers * data_sets : 0);
}

AnalysisOptions Run::analysis_options() const {
    AnalysisOptions analysis;
    analysis.threads = options_.threads;
    analysis.console = options_.console;
    analysis.folder = folder_.unfinished();
    analysis.rank_all = true;
    analysis.require_files = true;
    analysis.fdr_report = options_.fdr_report;
    if (!options_.save_prepared.empty()) analysis.save_prepared = options_.save_prepared + '/';
    if (!options_.prepared.empty()) analysis.prepared = options_.prepared + '/';
    return analysis;
}

RunSize Run::size() const {
    return {.individuals = static_cast<double>(data_.genotypes.individuals()),
            .markers = static_cast<double>(data_.genotypes.markers()),
            .data_sets = parameters_.permutations + 1.0,
            .best_m = static_cast<double>(parameters_.best_m),
            .max_retain = static_cast<double>(parameters_.max_retain),
            .threads = static_cast<double>(options_.threads),
            .console = options_.console};
}

void Run::analyse_data() {
    watch_.begin("screening");
    if (!options_.save_prepared.empty()) {
        std::filesystem::create_directories(options_.save_prepared);
    }
    recorder_ =
        std::make_unique<RunRecorder>(parameters_.permutations + 1, data_.genotypes.markers());
    Progress progress(size(), terminal_, options_.quiet, *recorder_);
    ConsoleFile console(folder_.unfinished() + "console.txt", options_.console, diagnostics_);
    result_ = analyse(
        data_, settings_, analysis_options(), [&](std::string_view text) { console.write(text); },
        diagnostics_, progress);
    console.end(watch_.total());
    progress.finish();
    watch_.split(progress.models_began(), "models");
    recorder_->take_best(result_.columns);
}

void Run::write_tables() {
    watch_.begin("tables and report");
    std::vector<int> selected;
    for (const int rank : result_.markers) selected.push_back(result_.columns[rank - 1]);
    const MarkerRows rows(
        study_.markers,
        count_all_genotypes(data_.genotypes, PhenotypeRows(data_.phenotypes), options_.threads),
        recorder_->record(), selected);
    const ModelDescription description{.version = kVersion,
                                       .format = request_.files.format,
                                       .study = study_,
                                       .data = data_,
                                       .parameters = parameters_,
                                       .result = result_,
                                       .record = recorder_->record(),
                                       .rows = rows};
    tell_untested(rows, selected);
    const nlohmann::json model = write_results(description, folder_.unfinished(), options_.gzip,
                                               options_.threads, diagnostics_);
    summary_ = summary_text(description, model, folder_.path(), watch_.total());
}

// The ranking has them last, but it has them.
void Run::tell_untested(const MarkerRows& rows, std::span<const int> selected) {
    const auto untested = std::ranges::count_if(
        selected, [&](int column) { return rows.row(static_cast<std::size_t>(column)).dropped(); });
    if (untested == 0) return;
    terminal_.say(std::to_string(untested) + " of the " + std::to_string(selected.size()) +
                  " markers in the model could not be tested by themselves, since too many of "
                  "their genotypes are missing; a smaller --best-m or --geno 0.05 leaves them out");
}

void Run::finish() {
    watch_.begin("checksums of the inputs");
    log_.inputs = checksums_->take();
    watch_.end();
    inputs_.require_unchanged();
    diagnostics_.finish();
    log_.stages = watch_.stages();
    log_.terminal = terminal_.log() + summary_;
    OutputFile file(folder_.unfinished() + "run.log", OutputFile::Mode::kTruncate, diagnostics_);
    file << log_.text();
    if (!file.close()) stop("", 1);
    folder_.publish();
    terminal_.print(summary_);
}

void add_output_options(CLI::App& run, RunOptions& options) {
    constexpr const char* kOutput = "Output";
    run.add_option("--out", options.out, "directory of the results")
        ->type_name("DIR")
        ->required()
        ->group(kOutput);
    run.add_flag("--force", options.force, "replace results that are there")->group(kOutput);
    run.add_flag("--gzip", options.gzip, "markers.tsv.gz instead of markers.tsv")->group(kOutput);
    run.add_flag("--console", options.console,
                 "console.txt too: what the bare vort writes to its standard output")
        ->group(kOutput);
    run.add_flag("--fdr-report", options.fdr_report,
                 "FDR_results.txt too: the observed data set's markers by false discovery rate")
        ->group(kOutput);
    run.add_flag("--quiet", options.quiet, "no progress on standard error")->group(kOutput);
}

void add_other_options(CLI::App& run, RunOptions& options) {
    run.add_option("--threads", options.threads,
                   "threads; any number gives the same results [default: all processors]")
        ->type_name("N")
        ->check(within(1, 1024))
        ->group("Resources");
    constexpr const char* kSteps = "Steps and comparisons";
    run.add_option("--save-prepared", options.save_prepared,
                   "keep rankings and phenotypes of all data sets in DIR")
        ->type_name("DIR")
        ->group(kSteps);
    run.add_option("--prepared", options.prepared, "take them from DIR instead of screening")
        ->type_name("DIR")
        ->group(kSteps);
    run.add_option("--clustering", options.clustering,
                   "of a pair's genotype cells: 0 k-means of their means; 1 to 4 alternatives "
                   "[default: 0]")
        ->type_name("K")
        ->check(within(0, 4))
        ->group(kSteps);
}

}  // namespace

CLI::App* add_run_command(CLI::App& app, RunOptions& options) {
    CLI::App* const run = app.add_subcommand("run", "analyse a study: all results in a directory");
    add_input_options(*run, options.input);
    add_analysis_options(*run, options.parameters);
    add_output_options(*run, options);
    add_other_options(*run, options);
    return run;
}

void run_study(const RunOptions& options) {
    Run(options).run();
}

}  // namespace vort
