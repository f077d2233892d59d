#include "vort/run_driver.h"

#include <algorithm>
#include <ctime>
#include <iostream>
#include <memory>
#include <vector>

#include "common/diagnostics.h"
#include "common/end_program.h"
#include "common/large_array.h"
#include "common/memory_check.h"
#include "common/output_file.h"
#include "common/parameter_file.h"
#include "ensemble/globals.h"
#include "ensemble/replication_driver.h"
#include "numeric/random.h"
#include "screening/genotype_data.h"
#include "screening/globals.h"
#include "screening/screening.h"
#include "screening/snp_index.h"
#include "vort/parameter_readers.h"

namespace vort {

namespace {

// A table as the stages take it, by its rows.
template <typename T>
class RowTable {
  public:
    RowTable(int rows, int columns)
        : storage_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {
        rows_.reserve(static_cast<std::size_t>(rows));
        for (int r = 0; r < rows; ++r) {
            rows_.push_back(storage_.data() + static_cast<std::size_t>(r) * columns);
        }
    }
    T* operator[](int row) { return rows_[row]; }
    std::vector<T*>& rows() { return rows_; }

  private:
    LargeArray<T> storage_;
    std::vector<T*> rows_;
};

// What each data set leaves: its ranking of all markers, and the phenotypes that gave it.
struct DataSets {
    RowTable<int> rankings;
    RowTable<short> phenotypes;

    void keep_phenotypes(int row) { std::copy_n(Y, Sample, phenotypes[row]); }
};

void read_parameters() {
    ReadPara_gw_vort3(&Sample, &Marker, &Permutation, &missingrepeat1, &head, &record,
                      &Save_marker_length, inputfilename);
}

void check_sizes() {
    if (Sample < 1 || Marker < 0 || Permutation < 0) {
        diagnose("sizes that cannot be", kParameterFileName, 0,
                 "Sample_size " + std::to_string(Sample) + ", Number_of_markers " +
                     std::to_string(Marker) + " and Number_of_permutation " +
                     std::to_string(Permutation) +
                     " cannot be analysed: at least 1, 0 and 0 were expected");
        end_program();
    }
    // Genotypes, rankings and phenotypes, and what each individual, marker and data set takes
    // besides.
    const double genotypes = static_cast<double>(Sample) * Marker;
    const double tables = (Permutation + 1.0) * (4.0 * Marker + 2.0 * Sample);
    const double individuals = 50.0 * Sample;
    const double markers = 30.0 * Marker;
    const double data_sets = (Permutation + 1.0) * (150.0 + Sample / 8.0);
    require_memory(genotypes + tables + individuals + markers + data_sets,
                   std::to_string(Sample) + " individuals (Sample_size), " +
                       std::to_string(Marker) + " markers (Number_of_markers) and " +
                       std::to_string(Permutation) + " permutations (Number_of_permutation)");
}

// Each permutation shuffles the phenotypes of the one before.
void draw_phenotypes(DataSets& data) {
    for (int r = 0; r < Replication; ++r) data.keep_phenotypes(r);
    for (int row = Replication; row < Replication + Permutation; ++row) {
        permutation1(Y, Sample);
        data.keep_phenotypes(row);
    }
}

void screen_data_set(DataSets& data) {
    load_data_set_once();
    draw_phenotypes(data);
    DataSetScreening screening(data.phenotypes.rows(), data.rankings.rows());
    orginal_data = 1;
    for (int r = 0; r < Replication; ++r) screening.screen(r);
    orginal_data = 0;
    for (int row = Replication; row < Replication + Permutation; ++row) screening.screen(row);
}

void screen_prepared_files(DataSets& data) {
    for (int row = 0; row < Replication + Permutation; ++row) {
        single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare(data.rankings[row],
                                                                               row);
        data.keep_phenotypes(row);
    }
}

// `list` holds 1-based ranks, the ranking 0-based columns. findSNPname takes its number as a line
// of the marker table, so the name and chromosome are those of the line before the marker's own.
void append_marker_names(const int* list, int count, const int* ranking) {
    OutputFile report("Final_result.txt", OutputFile::Mode::kAppend);
    if (count <= 0 || list == nullptr) return check_marker_table();
    for (int i = 0; list[i] > 0; ++i) {
        const int m = ranking[list[i] - 1];
        int chromosome = 0;
        int locus = 0;
        return_chromosome_and_locus(m, &chromosome, &locus);
        const char* name = findSNPname(m, &chromosome, &locus);
        report << "\n\nMarker \t" << list[i] << "\t name = " << name
               << "\t Chromosome= " << chromosome;
    }
}

void remove_intermediate_files() {
    remove_file("beta.txt");
    remove_file("output_X_Y.txt");
}

}  // namespace

int gethostname() {
    static char no_prefix[] = "";
    hostname = no_prefix;
    return 0;
}

int* main_vort3(int individuals, int markers, char** genotypes, short** phenotypes, int** rankings,
                int permutations, int replications, int* count) {
    gethostname();
    int unused_head = 0;
    int unused_record = 0;
    ReadPara(&ns, &nm, &missingrepeat, &unused_head, &unused_record);
    return permutation_simulation1(individuals, markers, genotypes, phenotypes, rankings,
                                   permutations, replications, count);
}

int run_analysis() {
    const std::time_t start = std::time(nullptr);
    read_parameters();
    check_sizes();
    DataSets data{{Permutation + 1, Marker}, {Replication + Permutation, Sample}};
    if (direct_calculate == 1) {
        screen_data_set(data);
    } else {
        screen_prepared_files(data);
    }
    int count = 0;
    const std::unique_ptr<int[]> selected(
        main_vort3(Sample, Marker, X, data.phenotypes.rows().data(), data.rankings.rows().data(),
                   Permutation, Replication, &count));
    append_marker_names(selected.get(), count, data.rankings[0]);
    release_data_set();
    remove_intermediate_files();
    std::cout << "Total time=" << static_cast<long>(std::time(nullptr) - start) << '\n';
    return 0;
}

}  // namespace vort
