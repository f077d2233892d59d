#include "cli/loaded_analysis.h"

#include "cli/account.h"
#include "study/study_directory.h"

namespace vort {

namespace {

// A file's numbers go through single precision; the sizes of a study must not.
Settings settings_for(const StudyParameters& parameters, int clustering, int individuals,
                      int markers) {
    Settings settings =
        settings_of(parse_parameters(parameter_text(parameters, individuals, markers)));
    settings.screening.individuals = individuals;
    settings.report.individuals = individuals;
    settings.builder.individuals = individuals;
    settings.screening.markers = markers;
    settings.builder.clustering = clustering;
    return settings;
}

}  // namespace

LoadedAnalysis loaded_analysis(const RunOptions& options, StudyFormat format, Study study,
                               Genotypes genotypes, const StudyParameters& parameters) {
    LoadedAnalysis analysis;
    analysis.format = format;
    analysis.study = std::move(study);
    analysis.parameters = parameters;
    analysis.settings =
        settings_for(parameters, options.clustering, genotypes.individuals(), genotypes.markers());
    analysis.data = {std::move(genotypes), analysis.study.phenotypes,
                     MarkerTable::from_markers(analysis.study.markers), analysis.study.clusters};
    return analysis;
}

LoadedAnalysis load_analysis(const RunOptions& options, const StudyRequest& request,
                             Terminal& terminal) {
    tell_pipes(request, terminal);
    Study study = load_study(request);
    std::optional<HeldBack> held_back;
    if (options.holdout) held_back = hold_back(study, *options.holdout, options.threads);
    tell_account(study, terminal);
    const StudyParameters parameters = parameters_for(options.parameters, study, terminal);
    Genotypes genotypes = std::move(study.genotypes);
    LoadedAnalysis analysis = loaded_analysis(options, request.files.format, std::move(study),
                                              std::move(genotypes), parameters);
    analysis.held_back = std::move(held_back);
    return analysis;
}

AnalysisOptions analysis_options(const RunOptions& options, const std::string& folder) {
    return {.threads = options.threads, .console = options.console, .folder = folder};
}

RunSize run_size(const LoadedAnalysis& analysis, const RunOptions& options) {
    return {.individuals = static_cast<double>(analysis.data.genotypes.individuals()),
            .markers = static_cast<double>(analysis.data.genotypes.markers()),
            .best_m = static_cast<double>(analysis.parameters.best_m),
            .max_retain = static_cast<double>(analysis.parameters.max_retain),
            .threads = static_cast<double>(options.threads),
            .console = options.console};
}

}  // namespace vort
