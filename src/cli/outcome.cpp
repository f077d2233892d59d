#include "cli/outcome.h"

#include <algorithm>
#include <memory>

#include "cli/results.h"
#include "cli/summary.h"
#include "cli/version.h"
#include "common/output_file.h"
#include "common/stop.h"
#include "screening/marker_counts.h"

namespace vort {

namespace {

void write_text(const std::string& path, const std::string& text, Diagnostics& diagnostics) {
    OutputFile file(path, OutputFile::Mode::kTruncate, diagnostics);
    file << text;
    if (!file.close()) stop("", 1);
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

// The ranking has them last, but it has them.
void tell_untested(const MarkerRows& rows, std::span<const int> selected, Terminal& terminal) {
    const auto untested = std::ranges::count_if(
        selected, [&](int column) { return rows.row(static_cast<std::size_t>(column)).dropped(); });
    if (untested == 0) return;
    terminal.say(std::to_string(untested) + " of the " + std::to_string(selected.size()) +
                 " markers in the model could not be tested by themselves, since too many of "
                 "their genotypes are missing; a smaller --best-m or --geno 0.05 leaves them out");
}

MergedRun merge_to_console(const LoadedAnalysis& analysis, const Parts& parts,
                           std::span<const Task> tasks, const RunOptions& options,
                           const ResultFolder& folder, const Stopwatch& watch,
                           Diagnostics& diagnostics) {
    ConsoleFile console(folder.unfinished() + "console.txt", options.console, diagnostics);
    MergedRun merged = merge_parts(
        parts, tasks, analysis.data, analysis.settings,
        analysis_options(options, folder.unfinished()),
        [&](std::string_view text) { console.write(text); }, diagnostics);
    console.end(watch.total());
    return merged;
}

}  // namespace

double result_bytes(const LoadedAnalysis& analysis, const RunOptions& options) {
    constexpr double kPage = 2e6;
    constexpr double kMarkerLine = 250;
    constexpr double kConsoleLine = 60;
    constexpr double kDataSet = 2000;  // of parts, beside its best markers
    const double markers = analysis.data.genotypes.markers();
    const double data_sets = analysis.parameters.permutations + 1.0;
    const auto held_back =
        static_cast<double>(analysis.held_back ? analysis.held_back->individuals.size() : 0);
    const double console = options.console ? kConsoleLine * markers * data_sets : 0;
    const double parts = data_sets * (kDataSet + 4.0 * analysis.parameters.best_m) + 20 * markers;
    return kPage + kMarkerLine * (markers + data_sets + held_back) + parts + 2 * console;
}

std::string write_outcome(const LoadedAnalysis& analysis, const Parts& parts,
                          std::span<const Task> tasks, const RunOptions& options,
                          const ResultFolder& folder, const Stopwatch& watch, Terminal& terminal,
                          Diagnostics& diagnostics) {
    const MergedRun merged =
        merge_to_console(analysis, parts, tasks, options, folder, watch, diagnostics);
    if (options.fdr_report) {
        write_text(folder.unfinished() + "FDR_results.txt", merged.fdr_report, diagnostics);
    }
    std::vector<int> selected;
    for (const int rank : merged.result.markers) {
        selected.push_back(merged.result.columns[rank - 1]);
    }
    const PhenotypeRows observed(analysis.data.phenotypes);
    const MarkerRows rows(analysis.study.markers,
                          count_all_genotypes(analysis.data.genotypes, observed, options.threads),
                          merged.record, selected);
    const ModelDescription description{.version = kVersion,
                                       .format = analysis.format,
                                       .study = analysis.study,
                                       .data = analysis.data,
                                       .parameters = analysis.parameters,
                                       .result = merged.result,
                                       .record = merged.record,
                                       .rows = rows};
    tell_untested(rows, selected, terminal);
    const nlohmann::json model = write_results(description, folder.unfinished(), options.gzip,
                                               options.threads, diagnostics, analysis.held_back);
    return summary_text(description, model, folder.path(), watch.total());
}

void write_log(RunLog& log, const Stopwatch& watch, const std::string& summary,
               const ResultFolder& folder, const Terminal& terminal, Diagnostics& diagnostics) {
    diagnostics.finish();
    log.stages = watch.stages();
    log.terminal = terminal.log() + summary;
    write_text(folder.unfinished() + "run.log", log.text(), diagnostics);
}

}  // namespace vort
