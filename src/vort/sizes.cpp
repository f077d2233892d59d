// Sizes that a study or its settings ask for, against what this process may use.
#include <algorithm>

#include "common/memory_check.h"
#include "common/stop.h"
#include "ensemble/model_stage.h"
#include "screening/phenotype_rows.h"
#include "screening/screening.h"
#include "vort/analysis.h"

namespace vort {

namespace {

void check_counts(const ScreeningSettings& asked, Diagnostics& diagnostics) {
    if (asked.individuals >= 1 && asked.markers >= 0 && asked.permutations >= 0) return;
    diagnostics.say("sizes that cannot be", kParameterFileName, 0,
                    "Sample_size " + std::to_string(asked.individuals) + ", Number_of_markers " +
                        std::to_string(asked.markers) + " and Number_of_permutation " +
                        std::to_string(asked.permutations) +
                        " cannot be analysed: at least 1, 0 and 0 were expected");
    stop("");
}

}  // namespace

double analysis_bytes(const Settings& settings, const AnalysisOptions& options, bool mapped,
                      double data_sets) {
    const double individuals = settings.screening.individuals;
    const double markers = settings.screening.markers;
    const double best = settings.builder.usable_markers();
    const double genotypes = mapped ? 0 : individuals / 4 * markers;
    const double rows = PhenotypeRows::bytes(individuals, data_sets) + data_sets * best * 4;
    ScreeningOptions screening;
    screening.threads = options.threads;
    screening.transcript = options.console;
    screening.batch_bytes = batch_bytes_for(individuals, markers);
    const double columns = 20.0 * std::clamp(settings.builder.max_retain, 1, 1000);
    const double stages =
        std::max(screening_bytes(markers, individuals, screening),
                 ModelStage::bytes(settings.builder.individuals, best, columns, options.threads));
    return genotypes + rows + stages + 30 * markers + 50 * individuals;
}

void check_sizes(const Settings& settings, const AnalysisOptions& options, bool mapped,
                 Diagnostics& diagnostics) {
    const ScreeningSettings& asked = settings.screening;
    check_counts(asked, diagnostics);
    require_memory(analysis_bytes(settings, options, mapped, asked.permutations + 1.0),
                   std::to_string(asked.individuals) + " individuals (Sample_size), " +
                       std::to_string(asked.markers) + " markers (Number_of_markers) and " +
                       std::to_string(asked.permutations) + " permutations (Number_of_permutation)",
                   diagnostics);
}

}  // namespace vort
