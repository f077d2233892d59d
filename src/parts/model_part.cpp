#include "parts/model_part.h"

#include <algorithm>

#include "parts/bytes.h"

namespace vort {

namespace {

ModelledData told_of(const ModelledDataSet& modelled) {
    return {modelled.statistic, modelled.selection ? modelled.selection->nonzero : 0,
            std::string(modelled.transcript.text())};
}

// Row r's data set is element r - first_row of a part.
std::vector<std::vector<int>> by_row(std::vector<std::vector<int>> best, int first_row) {
    best.insert(best.begin(), static_cast<std::size_t>(first_row), {});
    return best;
}

void put_learner(ByteWriter& out, const BaseLearner& learner) {
    out.put(learner.markers);
    for (const int marker : learner.marker) out.put(marker);
    out.put(learner.cells);
    out.put(learner.beta);
    out.put(learner.importance);
    for (const int group : learner.cluster) out.put(group);
    out.put(learner.average);
    out.put(learner.group);
    out.put(learner.carriers);
}

BaseLearner get_learner(ByteReader& in, int best_m) {
    constexpr int kCells = 9;
    BaseLearner learner;
    learner.markers = in.get_below(3);
    ByteReader::require(learner.markers >= 1);
    for (int& marker : learner.marker) marker = in.get_below(best_m + 1);
    for (int l = 0; l < learner.markers; ++l) ByteReader::require(learner.marker[l] >= 1);
    learner.cells = in.get_values<int>();
    for (const int cell : learner.cells) ByteReader::require(cell >= 0 && cell < kCells);
    learner.beta = in.get<double>();
    learner.importance = in.get<double>();
    for (int& group : learner.cluster) group = in.get<int>();
    learner.average = in.get<double>();
    learner.group = in.get<int>();
    learner.carriers = in.get<int>();
    return learner;
}

void put_observed(ByteWriter& out, const ObservedModel& observed) {
    out.put(static_cast<char>(observed.exists));
    out.put(observed.statistic);
    out.put(std::uint64_t{observed.learners.size()});
    for (const BaseLearner& learner : observed.learners) put_learner(out, learner);
    out.put(observed.importance);
    out.put(observed.selected);
}

ObservedModel get_observed(ByteReader& in, int best_m) {
    ObservedModel observed;
    observed.exists = in.get<char>() != 0;
    observed.statistic = in.get<double>();
    const std::size_t learners = in.get_count(96);
    for (std::size_t b = 0; b < learners; ++b) {
        observed.learners.push_back(get_learner(in, best_m));
        observed.learners.back().id = static_cast<int>(b) + 1;
    }
    observed.importance = in.get_values<double>();
    observed.selected = in.get_values<char>();
    const auto ranks = static_cast<std::size_t>(best_m) + 1;
    ByteReader::require(observed.importance.size() == ranks && observed.selected.size() == ranks);
    return observed;
}

}  // namespace

ModelPart model_task(const TaskInput& input, const Task& task, const TaskRows& rows,
                     ScreenPart screened, ModelStart start) {
    const std::vector<std::vector<int>> best = by_row(std::move(screened.best), rows.first_row);
    ModelStage stage(input.study.genotypes, rows.rows, best, input.settings.builder,
                     input.options.threads, input.options.console, input.work);
    start.data_set = rows.data_set;
    stage.begin_at(start);
    stage.take_searched([&](int row) { return std::move(screened.kept[row - rows.first_row]); });
    ModelPart part;
    const auto run = [&](int first_row, int count) {
        stage.run(first_row, count, [&](int d, ModelledDataSet&& modelled) {
            if (modelled.stopped) return;
            part.data_sets.push_back(told_of(modelled));
            if (d > 0) return;
            Transcript more(input.options.console);
            part.observed = observed_model(modelled, input.settings.builder, more);
            part.data_sets.back().console += more.text();
        });
    };
    if (task.first > 0) {
        run(rows.first_row, task.count);
    } else {
        run(0, 1);
        if (part.observed.exists) run(1, task.count - 1);
    }
    return part;
}

std::string bytes_of(const ModelPart& part) {
    ByteWriter out;
    out.put(std::uint64_t{part.data_sets.size()});
    for (const ModelledData& data_set : part.data_sets) {
        out.put(data_set.statistic);
        out.put(data_set.learners);
        out.put(data_set.console);
    }
    out.put(static_cast<char>(part.observed.importance.empty() ? 0 : 1));
    if (!part.observed.importance.empty()) put_observed(out, part.observed);
    return std::move(out).take();
}

ModelPart model_part_of(std::string_view bytes, const PartSizes& sizes) {
    ByteReader in(bytes);
    ModelPart part;
    const std::size_t modelled = in.get_count(20);
    for (std::size_t d = 0; d < modelled; ++d) {
        ModelledData data_set;
        data_set.statistic = in.get<double>();
        data_set.learners = in.get<int>();
        data_set.console = in.get_text();
        part.data_sets.push_back(std::move(data_set));
    }
    if (in.get<char>() != 0) part.observed = get_observed(in, sizes.best_m);
    in.require_end();
    const bool all = std::cmp_equal(modelled, sizes.data_sets);
    const bool observed_alone = modelled == 1 && !part.observed.importance.empty();
    ByteReader::require(all || modelled == 0 || (observed_alone && !part.observed.exists));
    return part;
}

}  // namespace vort
