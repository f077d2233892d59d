// What a task works on: some of a run's data sets, one after the other.
//
// Data set d shuffles the one before it, and draws n numbers for that, beginning (d - 1) n draws
// after the start of the screening's sequence. So a task that is given the phenotypes of the data
// set before its first one makes its own, whatever became of all others.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/work_meter.h"
#include "screening/phenotype_rows.h"
#include "vort/analysis.h"

namespace vort {

struct Task {
    int number = 0;
    int first = 0;  // data set
    int count = 0;  // of data sets, at least 1

    int end() const { return first + count; }
    bool operator==(const Task&) const = default;
};

// The data sets 0 .. data_sets - 1, in `tasks` shares that differ by one at most; fewer where there
// are not so many data sets.
std::vector<Task> equal_tasks(int data_sets, int tasks);

// An analysis that is worked on in tasks. Nothing is owned but the options.
struct TaskInput {
    const StudyData& study;
    const Settings& settings;
    AnalysisOptions options;  // threads and console; the folder is the tasks' own, for what passes
    Diagnostics& diagnostics;
    TellWork work = {};
    bool fdr_report = false;         // the observed data set's
    std::string save_prepared = {};  // prefix of prepared files to be written; none where empty
    std::string prepared = {};       // prefix of those that take the screening's place
};

// The phenotypes of a task's data sets, behind those of the data set before them.
struct TaskRows {
    PhenotypeRows rows;
    int first_row = 0;  // of the task's data sets
    int data_set = 0;   // number of row 0
};

// `start`: phenotypes of the data set before the task's first one; those observed where that is
// the observed one.
TaskRows task_rows(const TaskInput& input, const Task& task, std::span<const short> start);

// The starts of all tasks, which follow on each other from the first one on, whose start is given.
using TakeStart = std::function<void(const Task& task, std::span<const short> start)>;
void draw_starts(const StudyData& study, std::span<const Task> tasks, std::vector<short> start,
                 int threads, const TakeStart& take);

}  // namespace vort
