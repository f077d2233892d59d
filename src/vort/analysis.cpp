#include "vort/analysis.h"

#include <algorithm>
#include <climits>

#include "common/memory_check.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "csm/pair_search.h"
#include "ensemble/ensemble_stage.h"
#include "ensemble/final_report.h"
#include "screening/screening.h"
#include "vort/report_files.h"

namespace vort {

namespace {

// One run, stage by stage.
class Analysis {
  public:
    Analysis(StudyData& study, const Settings& settings, const AnalysisOptions& options,
             const Console& console, Diagnostics& diagnostics)
        : study_(study),
          settings_(settings),
          options_(options),
          console_(console),
          diagnostics_(diagnostics),
          phenotypes_(study.phenotypes, study.clusters) {}

    Result run() {
        screen();
        Transcript introduction(options_.console);
        introduce_ensemble(settings_, diagnostics_, introduction);
        say(introduction);
        return model_and_report();
    }

  private:
    void say(const Transcript& text) const { console_(text.text()); }

    void screen();
    Result model_and_report();
    void leave(const IntermediateTexts& texts);
    void write(const char* name, const std::string& text);

    StudyData& study_;
    const Settings& settings_;
    const AnalysisOptions& options_;
    const Console& console_;
    Diagnostics& diagnostics_;
    PhenotypeRows phenotypes_;
    std::vector<std::vector<int>> best_;  // of each data set, columns by rank
};

void Analysis::screen() {
    Generator generator;
    phenotypes_.permute(settings_.screening.permutations, generator, options_.threads);
    screen_data_sets(study_.genotypes, phenotypes_, study_.markers,
                     screening_options(study_, settings_, options_), diagnostics_,
                     [&](int, ScreenedDataSet&& screened) {
                         say(*screened.transcript);
                         best_.push_back(std::move(screened.best));
                     });
}

Result Analysis::model_and_report() {
    EnsembleOptions ensemble;
    ensemble.threads = options_.threads;
    ensemble.transcript = options_.console;
    ensemble.console = console_;
    EnsembleStage stage({study_.genotypes, phenotypes_, best_}, settings_, ensemble);
    try {
        Result result = stage.run();
        stage.print_markers(result);
        write_final_reports(study_, settings_, result, options_, console_, diagnostics_);
        return result;
    } catch (const Stop& stop) {
        if (stop.status == 0) leave(stage.intermediate_texts());
        throw;
    }
}

// Ends that the data bring about have always left the tables that the last model was made of.
void Analysis::leave(const IntermediateTexts& texts) {
    if (!texts.design.empty()) write("output_X_Y.txt", texts.design);
    if (!texts.coefficients.empty()) write("beta.txt", texts.coefficients);
}

void Analysis::write(const char* name, const std::string& text) {
    const std::string path = options_.folder + name;
    OutputFile file(path, OutputFile::Mode::kTruncate, diagnostics_);
    file << text;
    if (!file.close()) remove_file(path);
}

}  // namespace

ScreeningOptions screening_options(const StudyData& study, const Settings& settings,
                                   const AnalysisOptions& options) {
    ScreeningOptions screening;
    screening.threads = options.threads;
    screening.transcript = options.console;
    // As many as the builder or the report may ask for.
    screening.kept = std::min({std::max(settings.builder.usable_markers(), settings.report.markers),
                               study.genotypes.markers()});
    screening.batch_bytes =
        batch_bytes_for(study.genotypes.individuals(), study.genotypes.markers());
    return screening;
}

// The report and the builder look at the parameters, each for itself.
void introduce_ensemble(const Settings& settings, Diagnostics& diagnostics, Transcript& out) {
    print_warnings(settings.file, out);
    print_warnings(settings.file, out);
    const double m = settings.builder.usable_markers();
    if (m / 2.0 * (m - 1.0) > INT_MAX) {
        diagnostics.say("sizes out of range", kParameterFileName, 0,
                        "Best_m: at most 65536 was expected, not " +
                            std::to_string(settings.builder.markers) +
                            "; the pairs of more markers cannot be numbered");
        stop(std::string(out.text()));
    }
    out << "test_method=newCSM\n";
}

// The names come last: a marker table that cannot be used stops the run behind the report, which is
// left without them.
void write_final_reports(const StudyData& study, const Settings& settings, const Result& result,
                         const AnalysisOptions& options, const Console& console,
                         Diagnostics& diagnostics) {
    Transcript echo(options.console);
    ReportTexts texts{pvalue_text(result),
                      report_text({settings, study.genotypes, study.phenotypes}, result, echo)};
    console(echo.text());
    try {
        texts.report += marker_names_text(settings, result, study.markers);
    } catch (const Stop&) {
        write_reports(texts, options.folder, diagnostics);
        throw;
    }
    write_reports(texts, options.folder, diagnostics);
}

Result analyse(StudyData& study, const Settings& settings, const AnalysisOptions& options,
               const Console& console, Diagnostics& diagnostics) {
    return Analysis(study, settings, options, console, diagnostics).run();
}

}  // namespace vort
