#include "cli/analysis_parameters.h"

#include <CLI/CLI.hpp>

#include "common/number_text.h"

namespace vort {

namespace {

constexpr const char* kGroup = "Analysis; with --study the defaults are those of its parameter.txt";

template <typename T>
std::string with_default(const char* text, T value) {
    return std::string(text) + " [default: " + to_text(general(value)) + ']';
}

}  // namespace

void add_analysis_options(CLI::App& command, AnalysisParameters& parameters) {
    const StudyParameters& usual = kDefaultParameters;
    command
        .add_option("--permutations", parameters.permutations,
                    with_default("data sets with permuted phenotypes", usual.permutations))
        ->type_name("N")
        ->check(CLI::Range(0, 1000000))
        ->group(kGroup);
    command
        .add_option("--best-m", parameters.best_m,
                    with_default("best markers that are searched, pairs included", usual.best_m))
        ->type_name("N")
        ->check(CLI::Range(1, 65536))
        ->group(kGroup);
    command
        .add_option("--max-retain", parameters.max_retain,
                    with_default("most single markers, and most pairs, that a model is made of",
                                 usual.max_retain))
        ->type_name("N")
        ->check(CLI::Range(0, 1000000))
        ->group(kGroup);
    command
        .add_option("--fdr", parameters.fdr,
                    with_default("cut-off of the step-up rules for marker sets", usual.fdr))
        ->type_name("X")
        ->check(CLI::Range(1e-6, 1.0))
        ->group(kGroup);
}

StudyParameters parameters_for(const AnalysisParameters& given, const Study& study,
                               Terminal& terminal) {
    const StudyParameters usual = study.parameters.value_or(kDefaultParameters);
    StudyParameters parameters{.permutations = given.permutations.value_or(usual.permutations),
                               .best_m = given.best_m.value_or(usual.best_m),
                               .max_retain = given.max_retain.value_or(usual.max_retain),
                               .fdr = given.fdr.value_or(usual.fdr)};
    const int markers = static_cast<int>(study.markers.size());
    if (parameters.best_m > markers) {
        terminal.say("Best_m is lowered from " + std::to_string(parameters.best_m) + " to the " +
                     std::to_string(markers) + (markers == 1 ? " marker" : " markers") +
                     " of the study");
        parameters.best_m = markers;
    }
    return parameters;
}

}  // namespace vort
