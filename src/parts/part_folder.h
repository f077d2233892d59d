// The parts of a plan, in a folder beside plan.json.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "parts/model_part.h"
#include "parts/part_file.h"
#include "parts/plan.h"
#include "parts/screen_part.h"
#include "study/holdout.h"

namespace vort {

class PartFolder {
  public:
    // `folder` is that of plan.json. Nothing is touched. Throws InputError where its parts would
    // be elsewhere, by a link: files are written and removed there.
    explicit PartFolder(std::string folder);

    const std::string& path() const { return path_; }  // of the parts, ends with a slash
    std::string plan_path() const { return folder_ + '/' + kPlanName; }
    std::string genotypes_path() const { return path_ + "genotypes.bed"; }

    // Makes it where there is none. Throws InputError where that cannot be done.
    void make() const;
    // Removes plan.json, and then all parts and whatever else tasks leave; nothing else.
    void remove() const;
    // What it would remove.
    std::vector<std::string> own_files() const;

    // Of a finished part of a task: "screen", "draws", "model" or "start"; and the study.
    std::string part_path(const std::string& kind, int task) const;
    std::string study_path() const { return path_ + "study.part"; }
    std::string people_path() const { return path_ + "people.part"; }
    std::string held_back_path() const { return path_ + "holdout.part"; }
    bool has_part(const std::string& kind, int task) const;
    bool is_screened(int task) const { return has_part("screen", task) && has_part("draws", task); }
    bool is_modelled(int task) const { return has_part("model", task); }

    // Where a process says that it is at work on one.
    std::string mark_path(const std::string& kind, int task) const;

    // Lower than `end`, without a part.
    std::vector<int> missing(const std::string& kind, int end) const;

  private:
    std::string folder_;
    std::string path_;
};

// Reads and writes them, for one plan. Throws InputError where a part cannot be used, and stops
// with status 1 where one cannot be written.
class Parts {
  public:
    // Neither is owned.
    Parts(const PartFolder& folder, const Plan& plan, Diagnostics& diagnostics);

    const PartFolder& folder() const { return folder_; }

    void write(const Task& task, const ScreenedTask& screened) const;
    void write(const Task& task, const ModelPart& modelled) const;
    void write_start(const Task& task, std::span<const short> start) const;
    void write_study(const Study& study) const;
    void write_held_back(const HeldBack& held_back) const;

    ScreenPart screen(const Task& task) const;
    DrawsPart draws(const Task& task) const;
    ModelPart model(const Task& task) const;
    std::vector<short> start(const Task& task) const;
    Study study() const;
    Study people() const;  // with phenotypes and clusters only
    HeldBack held_back() const;

    // Throws InputError where a finished step ("screen" or "model") of a task left what is of
    // another plan or not whole, as far as titles and sizes tell.
    void require_usable(const std::string& step, const Task& task) const;

    // The observed data set's p-values, of the first task.
    std::vector<double> observed_pvalues() const;

    // Goes behind the draws of a task.
    void skip_draws(const Task& task, ModelStart& start) const;
    // Where a task's models begin: behind the draws of all data sets before it, whose screen parts
    // are there.
    ModelStart model_start(const Task& task) const;

  private:
    PartTitle title(const char* kind, const Task& task) const;
    PartSizes sizes(const Task& task) const;
    template <typename Parse>
    auto read(const char* kind, const Task& task, Parse parse) const;
    template <typename Parse>
    auto read_from(const std::string& path, const PartTitle& title, Parse parse) const;

    const PartFolder& folder_;
    const Plan& plan_;
    Diagnostics& diagnostics_;
    std::string fingerprint_;
};

}  // namespace vort
