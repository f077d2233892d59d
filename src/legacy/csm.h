// The builder of base learners.
//
// A CSM takes the best-ranked markers of one data set, searches the sets of one and of two markers
// for association, clusters the genotype cells of each kept set into risk groups, and writes each
// group as a 0/1 column of "output_X_Y.txt". One CSM serves the observed and every permuted data
// set of a run. Its phases have a source file each:
//
//     csm_setup.cpp        settings from "parameter.txt", work arrays
//     csm_run.cpp          one data set from intake to matrix file
//     csm_sample_data.cpp  intake, imputation, reordering and centring
//     csm_search.cpp       quick tests and the step-up rule
//     csm_score.cpp        permutation score of one marker set
//     csm_clustering*.cpp  genotype cells into groups
//     csm_matrix_file.cpp  the design matrix
//
// Individuals are numbered 1 .. n, ranked markers 1 .. m, orders (markers in a set) 1 .. 2.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "common/parameter_file.h"
#include "common/settings.h"
#include "csm/builder_data.h"
#include "csm/marker_set.h"
#include "legacy/best_cluster.h"
#include "legacy/bitset.h"
#include "legacy/offset_owner.h"

namespace vort {

class CSM {
  public:
    // Reads the settings and allocates the work arrays. `datapath` is put in front of the names of
    // the files written; it is not owned and must outlive the CSM.
    explicit CSM(char* datapath);

    // --- csm_setup.cpp ---
    void init_default_parameter(char* datapath);
    void ReadPara();
    int choose(int i, int j) const;
    // As the engine takes them, with the global `clustermethod`.
    BuilderSettings settings() const;

    // --- csm_run.cpp ---
    // Builds the base learners of data set `current`: row `current` of `phenotypes` (0-based
    // individuals) and of `rankings` (0-based columns of X, best first). Sample, Marker,
    // Permutation and Replication are not used. Returns 0. Bad data ends the program.
    double run(int current, int Sample, int Marker, char** X, short** phenotypes, int** rankings,
               int Permutation, int Replication);

    // Fills Tgen, yy and missing_set of data set `current`; 0, or -1 on bad data, after a message.
    int ReadSampleData(int current, int Sample, int Marker, char** X, short** Y, int** rank,
                       int Permutation, int Replication, int** Tgen, double* yy,
                       bitset** missing_set);
    // Spreads the cases over both halves of the individuals; returns their number.
    int init(bitset** missing_set);
    // Centres yy, prints its mean, sets and returns `sigma`.
    double calculate_sigma();
    // Direction 0 saves y[1 .. n], any other restores it.
    void bakeup(double* y, int direction);
    // Permutes yy at random and prints the ends of it.
    void mempermutation();

    // --- csm_search.cpp ---
    // Quick-test p-value of marker set c of order k.
    double Test(int k, int c);
    double test_quantitive(int k, int c);
    // Keeps the best marker sets of every order in the array; returns 0.
    int bestsetper1(BestClusterInformationArray* array);
    // Decodes set number c of k out of m markers into out[1 .. k], with `choose_table` and with
    // choose().
    void sortchoose(int c, int m, int k, int* out) const;
    void sortchoose1(int c, int m, int k, int* out) const;

    // Permutation score of a marker set, 1 at best; adds its best clustering to the array. Stores
    // the number of groups of that clustering in *best_groups where it is not null.
    double objectivefunction_quantitive(int k, int c, BestClusterInformationArray* array,
                                        int* best_groups);
    // Adds a copy of the record with `bestg` groups to the array; records hold 2 .. gmax groups.
    void save_cluster_information(
        int bestg, const std::vector<std::unique_ptr<BestClusterInformation>>& records, int gmax,
        int k, int c, BestClusterInformationArray* array, int ncell);

    // --- csm_clustering.cpp ---
    // All divide the cells 1 .. ncell into groups 1 .. g: group_of_cell[1 .. ncell]. Arrays are
    // indexed from 1. OneMarkerCluster uses cells 1 .. 3 of its arrays whatever ncell is.
    void OneMarkerCluster(double* sums, int* case_count, int* control_count, int* group_of_cell,
                          int ncell, int g);
    void cluster(double* cell_sum, int* cell_count, int* group_of_cell, int ncell, int g);
    void cluster1(double* value, int* case_count, int* control_count, int* group_of_cell, int ncell,
                  int g);
    void cluster2(double* value, int* case_count, int* control_count, int* group_of_cell, int ncell,
                  int g);
    void cluster3(double* value, int* case_count, int* control_count, int* group_of_cell, int ncell,
                  int g);
    void cluster4(double* value, int* case_count, int* control_count, int* group_of_cell, int ncell,
                  int g);

    // Writes the design matrix of the records, then the records themselves. A file that cannot be
    // opened ends the program.
    void ProvideDataToNextProgram(const BestClusterInformationArray* array, const char* file);

    // Settings, from "parameter.txt" where the key is named.
    int Number_of_permutation;                     // "Number_of_permutation"
    int marker_num;                                // m, "Best_m"
    int Sample_size;                               // n, "Sample_size"
    int Max_retain;                                // "Max_retain": base learners kept of each order
    int max_order;                                 // 2, or 1 where "Best_m" is below 1
    int Head;                                      // "Head"; carried
    int Recorder_num;                              // "Recorder_num"; carried
    int How_many_imputation_to_deal_with_missing;  // carried
    int Best_m;                                    // markers that may form pairs
    double FDR_cutoff;                             // for marker sets
    double FDR_request;                            // "FDR_cutoff_for_candidate_locus_combinations"
    double alpha;                                  // significance level of the quick tests
    double alpha_request;
    int test_method;  // search strategy; 0 and 2 search, the others do not
    int method_request;
    char Symbol_of_missing_Gentype[100];  // stored only
    char Inputfile[100];                  // "Inputfile"; carried
    char* datapath;

    // Carried for the coupling with the selector.
    int csm_mode;
    int csm_replicate;
    int ntru;
    int csm_count;
    int csm_flag_b;

    // 0 before the observed run, 1 before the permuted ones; chooses a message. Set by the
    // ensemble driver.
    int permutation_mode;
    int skip_read;           // non-zero: run() takes Tgen and yy as they are
    int data_ready;          // 1 once choose_table is filled
    int quantitative_trait;  // 1 once a phenotype was neither 0 nor 1

    // The data set in work.
    int case_num;                      // individuals with positive yy
    double sigma;                      // variance of yy, divisor n
    OffsetMatrix<int> choose_table;    // rows 0..m, columns 0..max_order
    OffsetMatrix<int> Tgen;            // genotypes, rows 1..n, columns 1..m
    OffsetVector<double> yy;           // phenotypes 1..n, centred by calculate_sigma
    std::vector<bitset*> missing_set;  // 0..n: which of an individual's markers were imputed
    std::array<int, 10> first_codes;   // raw codes of the first and of the last individual's row,
    std::array<int, 10> last_codes;    // columns 0 .. min(10, m)-1 of X

  private:
    // m, or 0 where "Best_m" asked for less.
    int usable_markers() const { return marker_num > 0 ? marker_num : 0; }
    void store_parameter(const ParameterEntry& entry);
    void allocate();
    void fill_choose_table();
    bool take_data(int current, char** X, short** phenotypes, int** rankings);
    void copy_raw_codes(char** X);
    void print_first_individuals() const;

    bool is_imputed(int i, int j) const;
    // The data set in work; `filled_in`: with the imputed genotypes, which else are missing.
    BuilderData packed_data(bool filled_in) const;
    // Adds the best clustering of a marker set to the array; returns its number of groups.
    int keep_best(const BuilderData& data, const MarkerSet& set,
                  BestClusterInformationArray* array);

    std::vector<bitset> missing_storage_;
};

}  // namespace vort
