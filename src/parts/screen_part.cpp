#include "parts/screen_part.h"

#include <algorithm>

#include "common/output_file.h"
#include "common/stop.h"
#include "ensemble/model_stage.h"
#include "results/table_text.h"
#include "screening/prepared_file.h"

namespace vort {

namespace {

class ScreenTask {
  public:
    ScreenTask(const TaskInput& input, const Task& task, const TaskRows& rows)
        : input_(input), task_(task), rows_(rows) {
        best_.resize(static_cast<std::size_t>(rows.first_row));
    }

    ScreenedTask run(std::span<const double> observed, bool search_too) {
        if (input_.prepared.empty()) {
            screen(observed);
        } else {
            take_prepared();
        }
        if (search_too) search();
        made_.screen.best.assign(best_.begin() + rows_.first_row, best_.end());
        return std::move(made_);
    }

  private:
    void screen(std::span<const double> observed);
    void take_prepared();
    void search();

    const TaskInput& input_;
    const Task& task_;
    const TaskRows& rows_;
    std::vector<std::vector<int>> best_;  // by row
    ScreenedTask made_;
};

void ScreenTask::screen(std::span<const double> observed) {
    ScreeningOptions options = screening_options(input_.study, input_.settings, input_.options);
    options.first_row = rows_.first_row;
    options.data_set = rows_.data_set;
    options.rank_all = true;
    options.work = input_.work;
    options.prepared_prefix = input_.save_prepared;
    const bool fdr = input_.fdr_report && task_.first == 0;
    const std::string fdr_path = input_.options.folder + "FDR_results.unfinished";
    if (fdr) options.fdr_report = fdr_path;
    RunRecorder recorder(task_.first, task_.count, input_.study.genotypes.markers(), observed);
    screen_data_sets(input_.study.genotypes, rows_.rows, input_.study.markers, options,
                     input_.diagnostics, [&](int d, ScreenedDataSet&& screened) {
                         recorder.screened({d, screened.smallest_pvalue,
                                            screened.best.empty() ? -1 : screened.best.front(),
                                            screened.pvalues, screened.ranking});
                         best_.push_back(std::move(screened.best));
                         made_.screen.console.emplace_back(screened.transcript->text());
                     });
    made_.screen.record = recorder.take();
    if (!fdr) return;
    made_.screen.fdr_report = read_bytes(fdr_path, "the report that was just written expected");
    remove_file(fdr_path);
}

void ScreenTask::take_prepared() {
    const Genotypes& genotypes = input_.study.genotypes;
    const int kept = screening_options(input_.study, input_.settings, input_.options).kept;
    for (int d = task_.first; d < task_.end(); ++d) {
        best_.push_back(read_prepared_file(prepared_file_name(input_.prepared, d),
                                           genotypes.individuals(), kept, genotypes.markers(),
                                           input_.diagnostics)
                            .best);
        made_.screen.console.emplace_back();
    }
    RunRecord& record = made_.screen.record;
    record.data_sets.resize(static_cast<std::size_t>(task_.count));
    record.quantiles = PvalueQuantiles(genotypes.markers());
    if (task_.first == 0) record.ranking = best_.front();
}

void ScreenTask::search() {
    ModelStage stage(input_.study.genotypes, rows_.rows, best_, input_.settings.builder,
                     input_.options.threads, input_.options.console, input_.work);
    ModelStart start;
    start.data_set = rows_.data_set;
    stage.begin_at(start);
    stage.search(rows_.first_row, task_.count, [&](int, KeptSets&& kept, std::int64_t draws) {
        made_.draws.draws.push_back(draws);
        made_.draws.pairs.push_back(kept.pairs.empty() ? 0 : 1);
        made_.screen.kept.push_back(std::move(kept));
    });
}

}  // namespace

ScreenedTask screen_task(const TaskInput& input, const Task& task, const TaskRows& rows,
                         std::span<const double> observed, bool search) {
    return ScreenTask(input, task, rows).run(observed, search);
}

std::vector<double> observed_pvalues(const TaskInput& input) {
    AnalysisOptions quiet = input.options;
    quiet.console = false;
    const PhenotypeRows row(input.study.phenotypes, input.study.clusters);
    std::vector<double> pvalues;
    screen_data_sets(input.study.genotypes, row, input.study.markers,
                     screening_options(input.study, input.settings, quiet), input.diagnostics,
                     [&](int, ScreenedDataSet&& screened) {
                         pvalues.assign(screened.pvalues.begin(), screened.pvalues.end());
                     });
    return pvalues;
}

}  // namespace vort
