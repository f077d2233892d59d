// The model, its p-value and the importance of its markers: docs/method.md, sections 8 and 9.
#include "ensemble/ensemble_stage.h"

#include <algorithm>

#include "common/stop.h"
#include "ensemble/conclusion.h"

namespace vort {

EnsembleStage::EnsembleStage(const ScreenedStudy& study, const Settings& settings,
                             EnsembleOptions options)
    : study_(study),
      settings_(settings),
      options_(std::move(options)),
      models_(study.genotypes, study.phenotypes, study.best, settings.builder, options_.threads,
              options_.transcript) {}

Result EnsembleStage::run() {
    announce();
    check_against_screening();
    analyse_observed();
    std::vector<double> permuted;
    if (observed_.exists) permuted = analyse_permutations();
    Result result = conclude(observed_, std::move(permuted), settings_.builder.permutations,
                             study_.best.front());
    result.pair_searches = pair_searches_;
    Transcript out(options_.transcript);
    print_pvalue(result, out);
    say(out);
    return result;
}

void EnsembleStage::announce() {
    Transcript out(options_.transcript);
    print_ensemble_sizes(settings_.builder, out);
    say(out);
}

// The builder takes its sizes by rules of its own, so it may ask for more than there is.
void EnsembleStage::check_against_screening() const {
    const auto check = [](const char* what, int wanted, int there) {
        if (wanted <= there) return;
        stop("find error, the ensemble stage needs " + std::to_string(wanted) + ' ' + what +
             " but only " + std::to_string(there) + " were screened\n");
    };
    check("individuals (Sample_size)", settings_.builder.individuals,
          study_.genotypes.individuals());
    check("markers (Best_m)", settings_.builder.markers, study_.genotypes.markers());
    check("permuted data sets (Number_of_permutation)", settings_.builder.permutations,
          study_.phenotypes.count() - 1);
}

void EnsembleStage::tell(int d, const ModelledDataSet& modelled) const {
    if (!options_.progress) return;
    options_.progress(d, modelled.statistic, modelled.selection ? modelled.selection->nonzero : 0);
}

void EnsembleStage::keep_last(ModelledDataSet& modelled) {
    pair_searches_.add(modelled.pair_search);
    if (modelled.design) last_design_ = std::move(modelled.design);
    if (modelled.selection) last_selection_ = std::move(modelled.selection);
}

void EnsembleStage::analyse_observed() {
    Transcript out(options_.transcript);
    models_.run(0, 1, [&](int, ModelledDataSet&& modelled) {
        say(modelled.transcript);
        if (!modelled.stopped) {
            observed_ = observed_model(modelled, settings_.builder, out);
            tell(0, modelled);
        }
        keep_last(modelled);
    });
    say(out);
}

std::vector<double> EnsembleStage::analyse_permutations() {
    std::vector<double> permuted;
    models_.run(1, std::max(settings_.builder.permutations, 0),
                [&](int d, ModelledDataSet&& modelled) {
                    Transcript out(options_.transcript);
                    print_permutation(d, modelled.transcript.text(), out);
                    if (!modelled.stopped) {
                        tell(d, modelled);
                        permuted.push_back(modelled.statistic);
                        print_comparison(observed_, modelled.statistic, out);
                    }
                    keep_last(modelled);
                    say(out);
                });
    return permuted;
}

void EnsembleStage::print_markers(const Result& result) const {
    Transcript out(options_.transcript);
    vort::print_markers(observed_, result, out);
    say(out);
}

IntermediateTexts EnsembleStage::intermediate_texts() const {
    return {last_design_ ? last_design_->text() : "",
            last_selection_ ? coefficient_text(*last_selection_) : ""};
}

}  // namespace vort
