// One data set, from intake to matrix file.
#include <algorithm>
#include <iostream>
#include <string>

#include "common/end_program.h"
#include "common/number_text.h"
#include "csm/csm.h"

namespace vort {

namespace {

constexpr int kShown = 10;  // individuals, and markers of each, on the console

}  // namespace

double CSM::run(int current, int /*Sample*/, int /*Marker*/, char** X, short** phenotypes,
                int** rankings, int /*Permutation*/, int /*Replication*/) {
    BestClusterInformationArray array(static_cast<long>(Max_retain) * max_order);
    fill_choose_table();
    if (skip_read == 0 && !take_data(current, X, phenotypes, rankings)) return 0.0;
    print_first_individuals();
    std::cout << (permutation_mode == 1 ? "permutation\n" : "bakeup\n");

    case_num = init(missing_set.data());
    calculate_sigma();
    print_first_individuals();

    if (test_method == 0 || test_method == 2) {
        bestsetper1(&array);
        std::cout << "first step finish at calculating 1-item\n";
    }
    ProvideDataToNextProgram(&array, (std::string(datapath) + "output_X_Y.txt").c_str());
    return 0.0;
}

// False where there is no genotype matrix; data that cannot be used end the program.
bool CSM::take_data(int current, char** X, short** phenotypes, int** rankings) {
    if (X == nullptr) {
        std::cout << "Don't read data from XX\n";
        return false;
    }
    const int result = ReadSampleData(current, 0, 0, X, phenotypes, rankings, 0, 0, Tgen.data(),
                                      yy.data(), missing_set.data());
    if (result < 0) end_program();
    copy_raw_codes(X);
    return true;
}

// These show the genotype matrix as loaded: its first columns, not the best-ranked ones.
void CSM::copy_raw_codes(char** X) {
    if (Sample_size < 1) return;
    const int shown = std::min(kShown, usable_markers());
    std::copy_n(X[0], shown, first_codes.begin());
    std::copy_n(X[Sample_size - 1], shown, last_codes.begin());
}

void CSM::print_first_individuals() const {
    for (int i = 1; i <= std::min(kShown, Sample_size); ++i) {
        std::cout << "Y=" << general(yy[i]) << " X=";
        for (int j = 1; j <= std::min(kShown, usable_markers()); ++j)
            std::cout << Tgen[i][j] << ' ';
        std::cout << '\n';
    }
}

}  // namespace vort
