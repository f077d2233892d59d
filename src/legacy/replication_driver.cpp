#include "legacy/replication_driver.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/output_file.h"
#include "ensemble/ensemble_stage.h"
#include "legacy/csm_lars.h"
#include "legacy/default_objects.h"
#include "legacy/final_report.h"
#include "legacy/genotype_data.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"
#include "legacy/random.h"

namespace vort {

namespace {

// The engine tells the method of clustering once a run, and the globals once a process.
void print(std::string_view text) {
    const std::string method = "clustermethod=" + std::to_string(clustermethod) + '\n';
    const std::size_t at = text.find(method);
    if (at != std::string_view::npos) {
        const bool told = std::exchange(clustermethod_print, 0) != 1;
        std::cout << text.substr(0, at + (told ? 0 : method.size()));
        text.remove_prefix(at + method.size());
    }
    std::cout << text;
}

void write_file(const std::string& path, const std::string& text) {
    OutputFile file(path, OutputFile::Mode::kTruncate, default_objects().diagnostics);
    if (!file.is_open()) std::exit(0);
    file << text;
}

// What the stage hands over from builder to selector, and from selector to report.
void write_intermediate_files(const EnsembleStage& stage) {
    const auto [design, coefficients] = stage.intermediate_texts();
    if (!design.empty()) write_file(std::string(hostname) + "output_X_Y.txt", design);
    if (!coefficients.empty()) write_file(std::string(hostname) + "beta.txt", coefficients);
}

Result run(EnsembleStage& stage) {
    return on_console([&](Transcript&) {
        try {
            Result result = stage.run();
            write_intermediate_files(stage);
            return result;
        } catch (const Stop&) {
            write_intermediate_files(stage);
            throw;
        }
    });
}

// Rows 0 and Replication .. Replication + Permutation - 1 of the phenotypes.
PhenotypeRows packed_rows(int individuals, short** phenotypes, int permutations, int replications) {
    const auto n = static_cast<std::size_t>(std::max(individuals, 0));
    PhenotypeRows rows({phenotypes[0], n});
    for (int k = 0; k < permutations; ++k) rows.add({phenotypes[replications + k], n});
    return rows;
}

void copy_first_codes(CSM_LARS& model, char** genotypes) {
    const int shown = std::clamp(model.marker_num, 0, static_cast<int>(model.first_codes.size()));
    if (model.Sample_size < 1) return;
    std::copy_n(genotypes[0], shown, model.first_codes.begin());
    std::copy_n(genotypes[model.Sample_size - 1], shown, model.last_codes.begin());
}

}  // namespace

int* permutation_simulation1(int individuals, int markers, char** genotypes, short** phenotypes,
                             int** rankings, int permutations, int replications, int* count) {
    for (const char* name : {"output_X_Y.txt", "beta.txt"}) {
        remove_file(std::string(hostname) + name);
    }
    CSM_LARS model(hostname);
    repeat = model.csm_replicate;
    permutation = model.Number_of_permutation;
    init_rand1();
    std::srand(0);

    Settings settings;
    settings.builder = model.csm.settings();
    const Genotypes packed_genotypes = packed(genotypes, individuals, markers);
    const PhenotypeRows rows = packed_rows(individuals, phenotypes, permutations, replications);
    std::vector<std::vector<int>> best;
    for (int d = 0; d <= permutations; ++d) {
        const int* const ranking = rankings[d == 0 ? 0 : replications + d - 1];
        best.emplace_back(ranking, ranking + std::max(markers, 0));
    }
    EnsembleOptions options;
    options.console = print;
    EnsembleStage stage({packed_genotypes, rows, best}, settings, options);
    Result result = run(stage);
    store_generator(stage.next_draw());
    copy_first_codes(model, genotypes);

    write_file("P_value.txt", pvalue_text(result));
    stage.print_markers(result);
    base_learner.clear();
    for (const BaseLearner& learner : result.learners) {
        base_learner.push_back(information_of(learner));
    }
    *count = static_cast<int>(base_learner.size());
    if (*count > 0) {
        return Final_result(0, individuals, markers, genotypes, phenotypes, rankings, permutations,
                            replications, ns, nm, *count, base_learner.data(),
                            result.importance.data(), static_cast<int>(result.markers.size()),
                            result.markers.data(), model.first_codes.data(),
                            model.last_codes.data());
    }
    begin_report(nm, model.first_codes.data(), model.last_codes.data());
    return new int[1]{-1};
}

}  // namespace vort
