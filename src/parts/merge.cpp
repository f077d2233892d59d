#include "parts/merge.h"

#include <utility>

#include "ensemble/conclusion.h"

namespace vort {

namespace {

// In the order of the stages, and within each of the data sets.
class Merger {
  public:
    Merger(const Parts& parts, std::span<const Task> tasks, const Settings& settings,
           const AnalysisOptions& options, const Console& console)
        : parts_(parts), tasks_(tasks), settings_(settings), options_(options), console_(console) {}

    void take_screened();
    void introduce(Diagnostics& diagnostics);
    void take_modelled();
    void conclude();

    MergedRun merged;

  private:
    void say(const Transcript& text) const { console_(text.text()); }
    void take(const Task& task, ModelPart&& part);

    const Parts& parts_;
    std::span<const Task> tasks_;
    const Settings& settings_;
    const AnalysisOptions& options_;
    const Console& console_;
    std::vector<int> best_;  // of the observed data set
    ObservedModel observed_;
    std::vector<double> permuted_;
};

void Merger::take_screened() {
    for (const Task& task : tasks_) {
        ScreenPart part = parts_.screen(task);
        for (const std::string& text : part.console) console_(text);
        merged.record.append(part.record);
        if (task.first > 0) continue;
        best_ = std::move(part.best.front());
        merged.fdr_report = std::move(part.fdr_report);
    }
}

void Merger::introduce(Diagnostics& diagnostics) {
    Transcript out(options_.console);
    introduce_ensemble(settings_, diagnostics, out);
    print_ensemble_sizes(settings_.builder, out);
    say(out);
}

void Merger::take_modelled() {
    for (const Task& task : tasks_) {
        take(task, parts_.model(task));
        if (!observed_.exists) return;
    }
}

void Merger::take(const Task& task, ModelPart&& part) {
    if (task.first == 0) observed_ = std::move(part.observed);
    if (observed_.exists && std::cmp_not_equal(part.data_sets.size(), task.count)) {
        refuse_payload(parts_.folder().part_path("model", task.number), "model");
    }
    for (std::size_t k = 0; k < part.data_sets.size(); ++k) {
        const int d = task.first + static_cast<int>(k);
        const ModelledData& modelled = part.data_sets[k];
        RunRecord::DataSet& record = merged.record.data_sets[d];
        record.statistic = modelled.statistic;
        record.learners = modelled.learners;
        Transcript out(options_.console);
        if (d == 0) {
            out << modelled.console;
        } else {
            permuted_.push_back(modelled.statistic);
            print_permutation(d, modelled.console, out);
            print_comparison(observed_, modelled.statistic, out);
        }
        say(out);
    }
}

void Merger::conclude() {
    merged.result =
        vort::conclude(observed_, std::move(permuted_), settings_.builder.permutations, best_);
    Transcript out(options_.console);
    print_pvalue(merged.result, out);
    print_markers(observed_, merged.result, out);
    say(out);
}

}  // namespace

MergedRun merge_parts(const Parts& parts, std::span<const Task> tasks, const StudyData& study,
                      const Settings& settings, const AnalysisOptions& options,
                      const Console& console, Diagnostics& diagnostics) {
    Merger merger(parts, tasks, settings, options, console);
    merger.take_screened();
    merger.introduce(diagnostics);
    merger.take_modelled();
    merger.conclude();
    write_final_reports(study, settings, merger.merged.result, options, console, diagnostics);
    return std::move(merger.merged);
}

}  // namespace vort
