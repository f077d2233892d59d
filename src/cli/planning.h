// Plans, as commands make them, compare them and go on with them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/loaded_analysis.h"
#include "cli/progress.h"
#include "parts/part_folder.h"
#include "parts/plan.h"

namespace vort {

// All of a plan but its tasks and the checksums of its inputs.
Plan plan_for(const LoadedAnalysis& analysis, const GivenOptions& given);

// As many data sets each as a screening holds at once. The observed one is by itself where the
// search of the others, in vain if it has no model, takes longer than to go through the genotypes
// twice.
std::vector<Task> tasks_of_one_process(const LoadedAnalysis& analysis);

// Stops with status 1 where it cannot be written.
void write_plan(const Plan& plan, const PartFolder& folder, Diagnostics& diagnostics);

// Of this version of the program.
Plan read_plan(const std::string& path);

// Throws InputError, naming what differs first, where `now` is not what was begun.
void require_same_plan(const Plan& begun, const Plan& now, const std::string& path);

// Throws InputError where an option was given, other than `but`, that is not as it was planned.
void require_planned(const GivenOptions& given, const Plan& plan, const std::string& path,
                     std::string_view but = "");

// Sets what is said of permutations to what the tasks have.
void set_permutations(Plan& plan);

// The options of a plan; where and how to work is taken from `now`.
RunOptions planned_options(const Plan& plan, const RunOptions& now);
// For a run that reads its study again: the process goes to the directory in which it was begun.
RunOptions restored_options(const Plan& plan, const RunOptions& now);

// The file that tasks map.
PlannedFile genotype_file(const Plan& plan, const PartFolder& folder);

// The study of a plan of vort plan, from its parts, with or without names of people and markers.
// Throws InputError where an input is no longer what it was.
LoadedAnalysis planned_analysis(const Plan& plan, const Parts& parts, const RunOptions& options,
                                bool names);

// A plan of vort plan in that folder; that of a run is refused.
Plan read_task_plan(const PartFolder& folder);

// Data sets without a part, by stage.
StageCounts count_todo(const Plan& plan, const PartFolder& folder);

}  // namespace vort
