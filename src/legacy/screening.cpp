#include "legacy/screening.h"

#include <algorithm>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "legacy/default_objects.h"
#include "legacy/genotype_data.h"
#include "legacy/globals.h"
#include "legacy/on_console.h"
#include "legacy/snp_index.h"
#include "screening/five_model_test.h"
#include "screening/prepared_file.h"
#include "screening/screening.h"

namespace vort {

namespace {

int prepared_length() {
    return std::min(Save_marker_length, Marker);
}

std::span<const short> current_phenotypes() {
    return {Y, static_cast<std::size_t>(Sample)};
}

void screen(const Genotypes& genotypes, int* ranking, Transcript& transcript) {
    ScreeningOptions options;
    options.kept = Marker;
    const bool report = orginal_data != 0 && write_FDR_result != 0;
    if (report) options.fdr_report = "FDR_results.txt";
    const MarkerTable no_table;
    screen_data_sets(genotypes, PhenotypeRows(current_phenotypes()),
                     report ? default_marker_table() : no_table, options,
                     default_objects().diagnostics, [&](int, ScreenedDataSet&& screened) {
                         transcript.add(*screened.transcript);
                         std::copy(screened.best.begin(), screened.best.end(), ranking);
                     });
}

void save_prepared_file(const Genotypes& genotypes, const int* ranking) {
    const int number = default_objects().prepared_files_written++;
    write_prepared_file(prepared_file_name(Datapath, number), genotypes, current_phenotypes(),
                        {ranking, static_cast<std::size_t>(prepared_length())},
                        default_objects().diagnostics);
}

void check_turn(int n) {
    const int read = default_objects().prepared_files_read;
    if (n == read) return;
    stop("find error when open prepare data file current num=" + std::to_string(read) +
         " but permut=" + std::to_string(n) + '\n');
}

}  // namespace

double calculate_pvalue4_and_freq(short* phenotypes, char** genotypes, int /*Marker*/,
                                  int individuals, int j, double* pvalue, int* caseCount,
                                  int* controlCount) {
    std::vector<signed char> codes(static_cast<std::size_t>(individuals));
    for (int i = 0; i < individuals; ++i) codes[i] = static_cast<signed char>(genotypes[i][j]);
    const MarkerCounts counts = count_genotypes(codes, {phenotypes, codes.size()});
    std::copy_n(counts.cases.count.begin(), 4, caseCount);
    std::copy_n(counts.controls.count.begin(), 4, controlCount);
    std::ranges::copy(five_model_pvalues(counts, samplesize[1], samplesize[0]), pvalue);
    return pvalue[0];
}

int single_marker_test_five_model_drop_missing_diseasemarker1(int* ranking) {
    load_data_set_once();
    return on_console([&](Transcript& transcript) {
        const Genotypes genotypes = packed(X, Sample, Marker);
        screen(genotypes, ranking, transcript);
        if (save_pre != 0) save_prepared_file(genotypes, ranking);
        return 0;
    });
}

int single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(int* ranking, int n) {
    return on_console([&](Transcript&) {
        check_turn(n);
        load_data_set_once();
        const PreparedDataSet read =
            read_prepared_file(prepared_file_name(Datapath, n), Sample, prepared_length(), Marker,
                               default_objects().diagnostics);
        std::copy(read.phenotypes.begin(), read.phenotypes.end(), Y);
        std::copy(read.best.begin(), read.best.end(), ranking);
        ++default_objects().prepared_files_read;
        return 0;
    });
}

}  // namespace vort
