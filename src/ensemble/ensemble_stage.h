// The ensemble stage: a model for the observed data set, the same on every permuted one.
#pragma once

#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "common/settings.h"
#include "ensemble/model_stage.h"
#include "ensemble/observed_model.h"
#include "ensemble/result.h"
#include "screening/phenotype_rows.h"

namespace vort {

// What was screened and loaded.
struct ScreenedStudy {
    const Genotypes& genotypes;
    const PhenotypeRows& phenotypes;
    std::span<const std::vector<int>> best;  // of each data set, columns by rank
};

struct EnsembleOptions {
    int threads = 1;
    bool transcript = true;
    // Gets console text as it comes.
    std::function<void(std::string_view)> console;
    // Gets the statistic of each data set d = 0, 1, 2, ... as it comes, and the number of base
    // learners in its model.
    std::function<void(int d, double statistic, int learners)> progress;
};

// What two intermediate files of an earlier form of the program held after the data set that was
// worked on last. A run that stops within the stage leaves them; nobody sees them otherwise.
struct IntermediateTexts {
    std::string design;        // "output_X_Y.txt"
    std::string coefficients;  // "beta.txt"
};

class EnsembleStage {
  public:
    // Nothing is owned but settings and options.
    EnsembleStage(const ScreenedStudy& study, const Settings& settings, EnsembleOptions options);

    // Stops where the settings ask for more than was screened, and where a data set cannot be
    // worked on.
    Result run();

    // Where the generator stands after the run.
    const Generator& next_draw() const { return models_.next_draw(); }

    // What run() leaves behind, whether it ended or stopped.
    IntermediateTexts intermediate_texts() const;

    // The console's list of the model's markers, after run().
    void print_markers(const Result& result) const;

  private:
    void announce();
    void check_against_screening() const;
    void tell(int d, const ModelledDataSet& modelled) const;
    void keep_last(ModelledDataSet& modelled);
    void analyse_observed();
    std::vector<double> analyse_permutations();
    void say(const Transcript& text) const { options_.console(text.text()); }

    ScreenedStudy study_;
    Settings settings_;
    EnsembleOptions options_;
    ModelStage models_;
    PairSearchCounts pair_searches_;
    ObservedModel observed_;
    std::optional<Design> last_design_;
    std::optional<Selection> last_selection_;
};

}  // namespace vort
