#include "vort/analysis.h"

#include <algorithm>
#include <climits>

#include "common/memory_check.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "csm/pair_search.h"
#include "ensemble/ensemble_stage.h"
#include "ensemble/final_report.h"
#include "screening/prepared_file.h"
#include "screening/screening.h"

namespace vort {

namespace {

// One run, stage by stage.
class Analysis {
  public:
    Analysis(StudyData& study, const Settings& settings, const AnalysisOptions& options,
             const Console& console, Diagnostics& diagnostics, Observer& observer)
        : study_(study),
          settings_(settings),
          options_(options),
          console_(console),
          diagnostics_(diagnostics),
          observer_(observer),
          phenotypes_(study.phenotypes) {}

    Result run() {
        if (options_.prepared.empty()) {
            screen();
        } else {
            take_prepared_files();
        }
        introduce_ensemble();
        return model_and_report();
    }

  private:
    void say(const Transcript& text) const { console_(text.text()); }
    int permutations() const { return settings_.screening.permutations; }
    // Best markers that the builder may ask for.
    int kept() const {
        return std::min({std::max(settings_.builder.usable_markers(), settings_.report.markers),
                         study_.genotypes.markers()});
    }

    void screen();
    void take_prepared_files();
    void introduce_ensemble();
    EnsembleOptions ensemble_options();
    Result model_and_report();
    void leave(const IntermediateTexts& texts);
    void write(const char* name, OutputFile::Mode mode, const std::string& text);
    void write_pvalues(const Result& result);
    void write_report(const Result& result);
    OutputFile open(const char* name, OutputFile::Mode mode) {
        return OutputFile(options_.folder + name, mode, diagnostics_);
    }

    StudyData& study_;
    const Settings& settings_;
    const AnalysisOptions& options_;
    const Console& console_;
    Diagnostics& diagnostics_;
    Observer& observer_;
    PhenotypeRows phenotypes_;
    std::vector<std::vector<int>> best_;  // of each data set, columns by rank
};

void Analysis::screen() {
    Generator generator;
    phenotypes_.permute(permutations(), generator, options_.threads);
    ScreeningOptions screening;
    screening.threads = options_.threads;
    screening.transcript = options_.console;
    screening.kept = kept();
    screening.rank_all = options_.rank_all;
    screening.work = [this](double done) { observer_.working(Stage::kScreen, done); };
    screening.batch_bytes =
        batch_bytes_for(study_.genotypes.individuals(), study_.genotypes.markers());
    if (options_.fdr_report) screening.fdr_report = options_.folder + "FDR_results.txt";
    screening.prepared_prefix = options_.save_prepared;
    screen_data_sets(study_.genotypes, phenotypes_, study_.markers, screening, diagnostics_,
                     [&](int d, ScreenedDataSet&& screened) {
                         say(*screened.transcript);
                         observer_.screened({d, phenotypes_.count(), screened.smallest_pvalue,
                                             screened.best.empty() ? -1 : screened.best.front(),
                                             screened.pvalues, screened.ranking});
                         best_.push_back(std::move(screened.best));
                     });
}

void Analysis::take_prepared_files() {
    for (int d = 0; d <= permutations(); ++d) {
        PreparedDataSet read = read_prepared_file(prepared_file_name(options_.prepared, d),
                                                  study_.genotypes.individuals(), kept(),
                                                  study_.genotypes.markers(), diagnostics_);
        if (d == 0) {
            study_.phenotypes = read.phenotypes;
            phenotypes_ = PhenotypeRows(read.phenotypes);
        } else {
            phenotypes_.add(read.phenotypes);
        }
        best_.push_back(std::move(read.best));
    }
}

// What the report and the builder say of their looks at the parameters.
void Analysis::introduce_ensemble() {
    Transcript out(options_.console);
    print_warnings(settings_.file, out);
    print_warnings(settings_.file, out);
    say(out);
    out.clear();
    const double m = settings_.builder.usable_markers();
    if (m / 2.0 * (m - 1.0) > INT_MAX) {
        diagnostics_.say("sizes out of range", kParameterFileName, 0,
                         "Best_m: at most 65536 was expected, not " +
                             std::to_string(settings_.builder.markers) +
                             "; the pairs of more markers cannot be numbered");
        stop("");
    }
    out << "test_method=newCSM\n";
    say(out);
}

EnsembleOptions Analysis::ensemble_options() {
    EnsembleOptions ensemble;
    ensemble.threads = options_.threads;
    ensemble.transcript = options_.console;
    ensemble.console = console_;
    ensemble.progress = [this](int d, double statistic, int learners) {
        observer_.modelled({d, settings_.builder.permutations + 1, statistic, learners});
    };
    ensemble.work = [this](double done) { observer_.working(Stage::kModel, done); };
    return ensemble;
}

Result Analysis::model_and_report() {
    EnsembleStage stage({study_.genotypes, phenotypes_, best_}, settings_, ensemble_options());
    try {
        Result result = stage.run();
        write_pvalues(result);
        stage.print_markers(result);
        write_report(result);
        return result;
    } catch (const Stop&) {
        leave(stage.intermediate_texts());
        throw;
    }
}

void Analysis::leave(const IntermediateTexts& texts) {
    if (!texts.design.empty()) {
        open("output_X_Y.txt", OutputFile::Mode::kTruncate) << texts.design;
    }
    if (!texts.coefficients.empty()) {
        open("beta.txt", OutputFile::Mode::kTruncate) << texts.coefficients;
    }
}

void Analysis::write(const char* name, OutputFile::Mode mode, const std::string& text) {
    OutputFile file = open(name, mode);
    file << text;
    if (!file.close() && options_.require_files) stop("", 1);
}

void Analysis::write_pvalues(const Result& result) {
    OutputFile file = open("P_value.txt", OutputFile::Mode::kTruncate);
    if (!file.is_open()) stop("", options_.require_files ? 1 : 0);
    file << pvalue_text(result);
    if (!file.close() && options_.require_files) stop("", 1);
}

// The names come last: a marker table that cannot be used stops the run behind the report.
void Analysis::write_report(const Result& result) {
    Transcript echo(options_.console);
    write("Final_result.txt", OutputFile::Mode::kTruncate,
          report_text({settings_, study_.genotypes, study_.phenotypes}, result, echo));
    say(echo);
    write("Final_result.txt", OutputFile::Mode::kAppend,
          marker_names_text(settings_, result, study_.markers));
}

}  // namespace

Result analyse(StudyData& study, const Settings& settings, const AnalysisOptions& options,
               const Console& console, Diagnostics& diagnostics, Observer& observer) {
    return Analysis(study, settings, options, console, diagnostics, observer).run();
}

}  // namespace vort
