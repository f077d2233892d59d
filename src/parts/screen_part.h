// What the screening and the search of a task's data sets leave for the tasks that follow.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "csm/builder.h"
#include "parts/task.h"
#include "results/run_record.h"

namespace vort {

// Vectors have an element for each data set of the task, in order.
struct ScreenPart {
    RunRecord record;  // p-values, and what comes of them; of models it knows nothing
    std::vector<std::vector<int>> best;  // columns by rank
    std::vector<KeptSets> kept;          // empty where nobody searched
    std::vector<std::string> console;    // what the screening writes
    std::string fdr_report;              // "FDR_results.txt", of the observed data set
};

// How many numbers each data set draws in the ensemble stage, and whether it keeps pairs: all that
// other tasks need to know of it, in a file of its own.
struct DrawsPart {
    std::vector<std::int64_t> draws;
    std::vector<char> pairs;
};

struct ScreenedTask {
    ScreenPart screen;
    DrawsPart draws;
};

// `observed`: the observed data set's p-values, which EMP1 is counted against; empty where it is
// among the task's data sets, or nothing is screened. `search`: false where no model will be built.
ScreenedTask screen_task(const TaskInput& input, const Task& task, const TaskRows& rows,
                         std::span<const double> observed, bool search);

// The observed data set's p-values, for a task that does not have it.
std::vector<double> observed_pvalues(const TaskInput& input);

// As bytes, and back. Reading throws MalformedBytes where the bytes cannot be of such a task.
struct PartSizes {
    int markers;
    int best_m;
    int data_sets;
};
std::string bytes_of(const ScreenPart& part);
std::string bytes_of(const DrawsPart& part);
ScreenPart screen_part_of(std::string_view bytes, const PartSizes& sizes);
DrawsPart draws_part_of(std::string_view bytes, int data_sets);

}  // namespace vort
