// Builder and selector on one data set after another.
//
// Data sets are worked on in windows, side by side. A window goes phase by phase: intake, search,
// scores, design and selection. The search draws no random numbers and tells how many the rest will
// draw, so that each data set's place in the sequence is a sum over those before it.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "common/settings.h"
#include "common/transcript.h"
#include "common/work_meter.h"
#include "common/workspaces.h"
#include "csm/builder.h"
#include "csm/design.h"
#include "genotypes/genotypes.h"
#include "lars/selector.h"
#include "numeric/generator.h"
#include "screening/phenotype_rows.h"

namespace vort {

// The statistic of a data set that has no base learner.
constexpr double kNoStatistic = 2147483647.0;

struct ModelledDataSet {
    double statistic = kNoStatistic;     // S = Cp(stop) / Cp(0)
    std::optional<Design> design;        // once it is built
    std::optional<Selection> selection;  // where the design has columns
    PairSearchStatistics pair_search;
    bool stopped = false;  // the run ends with it
    Transcript transcript{false};
};

// Where a stage begins that has not all data sets of its run.
struct ModelStart {
    int data_set = 0;          // number of row 0 of the phenotypes
    Generator draws;           // where the draws of the first data set to be modelled begin
    bool method_told = false;  // the method of clustering stands on the console before it
};

class ModelStage {
  public:
    // best[r]: columns of row r's data set by rank, at least m. Nothing is owned but the settings.
    ModelStage(const Genotypes& genotypes, const PhenotypeRows& phenotypes,
               std::span<const std::vector<int>> best, const BuilderSettings& settings, int threads,
               bool wanted, const TellWork& work = {});

    // Before the first call of another member.
    void begin_at(const ModelStart& start);

    // Gets data sets by their numbers, in order, with the sets of markers that are kept and how
    // many numbers the rest will draw.
    using TakeKept = std::function<void(int d, KeptSets&& kept, std::int64_t draws)>;

    // The search alone, of rows first .. first + count - 1.
    void search(int first, int count, const TakeKept& take);

    // What a search has found, by row; run() asks for it instead of searching.
    void take_searched(std::function<KeptSets(int row)> searched);

    // Gets data sets in order. One whose run stops is handed on as far as it came, and its Stop is
    // thrown then.
    using Take = std::function<void(int d, ModelledDataSet&& modelled)>;

    // Rows first .. first + count - 1; every call goes on where the one before ended.
    void run(int first, int count, const Take& take);

    // Where the draws of the data set after the last one begin.
    const Generator& next_draw() const { return next_draw_; }

    // Bytes that the stage takes.
    static double bytes(double individuals, double markers, double columns, int threads);

  private:
    struct Work;

    template <typename Body>
    void for_each_window(int first, int count, Body body);
    int window_size() const;
    std::vector<Work> take_data(int first, int count);
    void hand_on_kept(std::vector<Work>& window, const TakeKept& take) const;
    void run_window(std::vector<Work>& window, const Take& take);
    void find(std::vector<Work>& window);
    void place_draws(std::vector<Work>& window);
    void score(std::vector<Work>& window);
    void finish(Work& work);
    // Outer loops over data sets where there are enough of them, else loops within each.
    template <typename Body>
    void for_each_work(std::vector<Work>& window, bool apart, Body body);

    const Genotypes& genotypes_;
    const PhenotypeRows& phenotypes_;
    std::span<const std::vector<int>> best_;
    BuilderSettings settings_;
    int threads_;
    bool wanted_;
    WorkMeter search_meter_;
    WorkMeter model_meter_;
    Workspaces<PairCodeRoom> rooms_;
    std::function<KeptSets(int row)> searched_;
    int data_set_ = 0;           // number of row 0
    Generator next_draw_;        // where the next data set's draws begin
    bool quantitative_ = false;  // a phenotype so far was neither 0 nor 1
    bool method_told_ = false;   // the method of clustering, on the console
};

}  // namespace vort
