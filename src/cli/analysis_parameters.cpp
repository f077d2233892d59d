#include "cli/analysis_parameters.h"

#include <CLI/CLI.hpp>

#include "cli/ranges.h"
#include "common/number_text.h"

namespace vort {

namespace {

constexpr const char* kGroup = "Analysis; with --study the defaults are those of its parameter.txt";

std::string with_default(const char* text, int value) {
    return std::string(text) + " [default: " + std::to_string(value) + ']';
}

int asked_for(std::optional<int> given, const std::optional<StudyParameters>& study,
              int StudyParameters::*parameter, int usual) {
    return given.value_or(study ? (*study).*parameter : usual);
}

}  // namespace

void add_analysis_options(CLI::App& command, AnalysisParameters& parameters) {
    command
        .add_option("--permutations", parameters.permutations,
                    with_default("data sets with permuted phenotypes", kUsualPermutations))
        ->type_name("N")
        ->transform(whole(0, 1000000))
        ->group(kGroup);
    command
        .add_option("--best-m", parameters.best_m,
                    with_default("best markers that are searched, pairs included", kUsualBestM))
        ->type_name("N")
        ->transform(whole(1, 65536))
        ->group(kGroup);
    command
        .add_option("--max-retain", parameters.max_retain,
                    with_default("most single markers, and most pairs, that a model is made of",
                                 kUsualMaxRetain))
        ->type_name("N")
        ->transform(whole(0, 1000000))
        ->group(kGroup);
    command
        .add_option("--fdr", parameters.fdr,
                    "cut-off of the step-up rules for marker sets "
                    "[default: 0.1 x Best_m / markers]")
        ->type_name("X")
        ->check(within(1e-9, 1.0))
        ->group(kGroup);
}

StudyParameters parameters_for(const AnalysisParameters& given, const Study& study,
                               Terminal& terminal) {
    using Of = StudyParameters;
    const auto& of_study = study.parameters;
    Of parameters;
    parameters.permutations =
        asked_for(given.permutations, of_study, &Of::permutations, kUsualPermutations);
    parameters.best_m = asked_for(given.best_m, of_study, &Of::best_m, kUsualBestM);
    parameters.max_retain = asked_for(given.max_retain, of_study, &Of::max_retain, kUsualMaxRetain);
    const int markers = static_cast<int>(study.markers.size());
    if (parameters.best_m > markers) {
        if (given.best_m || of_study) {
            terminal.say("Best_m is lowered from " + std::to_string(parameters.best_m) +
                         " to the number of markers, " + std::to_string(markers));
        }
        parameters.best_m = markers;
    }
    const double usual_fdr = kUsualFdr * parameters.best_m / markers;
    parameters.fdr =
        as_read_back(general(given.fdr.value_or(of_study ? of_study->fdr : usual_fdr)));
    return parameters;
}

}  // namespace vort
