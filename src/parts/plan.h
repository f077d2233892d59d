// A plan: how a run is cut into tasks, and what makes sure that all of them work on the same.
//
// It stands in plan.json, written when everything that tasks need is there. All of it but the tasks
// and the number of data sets goes into a fingerprint, which every part bears; so parts stay good
// where a plan is extended by further data sets, and no other plan's are taken for its own.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "parts/task.h"
#include "study/study.h"

namespace vort {

// A file as it was when the plan was made.
struct PlannedFile {
    InputFile file;
    std::uintmax_t size = 0;
    std::int64_t modified = 0;  // in nanoseconds; only files of the same time are compared
    std::string sha256;         // empty where it was not waited for
};

// What the largest task of a plan takes; for schedulers, nothing in the program asks.
struct TaskNeeds {
    int threads = 0;
    double screen_seconds = 0;
    double model_seconds = 0;
    double bytes = 0;  // without genotypes, which are mapped
};

struct Plan {
    std::string version;    // of the program
    bool by_run = false;    // made by a run in one process, which reads the study again
    std::string directory;  // in which paths are to be understood
    // The command's options without their dashes, in the order of its help; values are as they were
    // given, empty for flags.
    std::vector<std::pair<std::string, std::string>> options;
    int individuals = 0;
    int markers = 0;
    StudyParameters parameters;
    std::vector<PlannedFile> inputs;
    PlannedFile genotypes;  // that tasks map; without a path where the plan is a run's
    std::vector<Task> tasks;
    TaskNeeds needs;  // of a plan by vort plan that is written; reading leaves zeros

    int data_sets() const { return tasks.empty() ? 0 : tasks.back().end(); }
    int most_data_sets() const;  // of a task
    const std::string* option(const std::string& name) const;
    std::string fingerprint() const;
};

inline constexpr const char* kPlanName = "plan.json";

// Throws InputError where a name is not UTF-8, so that a plan cannot hold it.
void require_lasting_names(const Plan& plan);
std::string plan_text(const Plan& plan);
// Throws InputError where the file cannot be read, is no plan, or is one of another version of the
// program.
Plan read_plan(const std::string& path, const std::string& version);
// Throws InputError where the file is no plan of any version.
void require_plan(const std::string& path);
// The same of a text that is said to come from `path`.
Plan plan_of(const std::string& text, const std::string& path, const std::string& version);

// Size and time of a regular file; zeros of any other.
PlannedFile planned_file(const InputFile& file);

// Throws InputError where a file is no longer what it was. One that has another time is read to see
// whether its checksum is the same, where that is known.
void require_unchanged(const PlannedFile& planned, const std::string& directory);
// The same by its checksum, which is known, whatever its time.
void require_same_bytes(const PlannedFile& planned, const std::string& directory);

}  // namespace vort
