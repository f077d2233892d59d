#include "parts/task.h"

#include <algorithm>

#include "screening/prepared_file.h"

namespace vort {

namespace {

// At the draws of data set d, from 1.
Generator generator_at(int d, int individuals) {
    Generator generator;
    generator.skip(static_cast<std::uint64_t>(d - 1) * static_cast<std::uint64_t>(individuals));
    return generator;
}

PhenotypeRows rows_from(const StudyData& study, std::span<const short> start) {
    return PhenotypeRows(start, study.clusters);
}

TaskRows prepared_rows(const TaskInput& input, const Task& task) {
    const Genotypes& genotypes = input.study.genotypes;
    const auto read = [&](int d) {
        return read_prepared_file(prepared_file_name(input.prepared, d), genotypes.individuals(), 0,
                                  genotypes.markers(), input.diagnostics)
            .phenotypes;
    };
    TaskRows made{rows_from(input.study, read(task.first)), 0, task.first};
    for (int d = task.first + 1; d < task.end(); ++d) made.rows.add(read(d));
    return made;
}

}  // namespace

std::vector<Task> equal_tasks(int data_sets, int tasks) {
    const int count = std::clamp(tasks, 1, std::max(data_sets, 1));
    std::vector<Task> made(static_cast<std::size_t>(count));
    int first = 0;
    for (int t = 0; t < count; ++t) {
        made[t] = {t, first, data_sets / count + (t < data_sets % count ? 1 : 0)};
        first = made[t].end();
    }
    return made;
}

TaskRows task_rows(const TaskInput& input, const Task& task, std::span<const short> start) {
    if (!input.prepared.empty()) return prepared_rows(input, task);
    const bool observed = task.first == 0;
    TaskRows made{rows_from(input.study, start), observed ? 0 : 1, observed ? 0 : task.first - 1};
    Generator generator = generator_at(std::max(task.first, 1), made.rows.individuals());
    made.rows.permute(observed ? task.count - 1 : task.count, generator, input.options.threads);
    return made;
}

void draw_starts(const StudyData& study, std::span<const Task> tasks, std::vector<short> start,
                 int threads, const TakeStart& take) {
    constexpr int kAtOnce = 256;  // data sets held
    for (const Task& task : tasks) {
        take(task, start);
        if (task == tasks.back()) return;
        // The observed data set is drawn by nobody.
        for (int d = std::max(task.first, 1); d < task.end(); d += kAtOnce) {
            const int count = std::min(kAtOnce, task.end() - d);
            PhenotypeRows rows = rows_from(study, start);
            Generator generator = generator_at(d, rows.individuals());
            rows.permute(count, generator, threads);
            start = rows.row(count);
        }
    }
}

}  // namespace vort
