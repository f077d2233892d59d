#include "legacy/csm_lars.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

#include "common/memory_check.h"
#include "common/text_input.h"
#include "legacy/default_objects.h"
#include "legacy/lars.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

constexpr int kPathLimit = 50;  // residual vectors of the selector, one more than its steps

// Reads on behind the first 'p', which begins the trailer: the matrix holds numbers only.
void skip_to_trailer(TextInput& input) {
    int c = input.get();
    while (c != EOF && c != 'p') c = input.get();
}

}  // namespace

CSM_LARS::CSM_LARS(char* datapath) : csm(datapath), datapath_(datapath) {
    refresh_settings();
    csm_replicate = csm.csm_replicate;
    Number_of_permutation = csm.Number_of_permutation;
}

void CSM_LARS::refresh_settings() {
    Sample_size = csm.Sample_size;
    marker_num = csm.marker_num;
    csm.datapath = datapath_;
}

double CSM_LARS::run(int current, int Sample, int Marker, char** X, short** phenotypes,
                     int** rankings, int Permutation, int Replication, int skip_build,
                     double* stat1, double* stat2, double* modelTestValue, double* stat4,
                     double* stat5) {
    refresh_settings();
    std::cout << "csm begin\n";
    if (skip_build == 0) {
        csm.run(current, Sample, Marker, X, phenotypes, rankings, Permutation, Replication);
    }
    std::cout << "csm end\n";
    const int shown = std::clamp(marker_num, 0, static_cast<int>(first_codes.size()));
    std::copy_n(csm.first_codes.begin(), shown, first_codes.begin());
    std::copy_n(csm.last_codes.begin(), shown, last_codes.begin());

    unsigned int rows = 1033;
    unsigned int cols = 152;
    if (restorepara(&rows, &cols) != 0) {
        std::cout << "find error in restore file output_X_Y.txt\nRow=" << rows << " Col=" << cols
                  << '\n';
        std::exit(0);
    }
    if (cols == 0) return kNoStatistic;
    on_console([&](Transcript&) {
        require_memory(8.0 * rows * (cols + 52.0),
                       "a design matrix of " + std::to_string(rows) + " rows and " +
                           std::to_string(cols) + " columns",
                       default_objects().diagnostics);
        return 0;
    });
    LARS lars(static_cast<int>(rows), static_cast<int>(cols), kPathLimit, 0);
    lars.datapath = datapath_;
    lars.csm_count = csm.csm_count;
    lars.csm_flag_b = csm.csm_flag_b;
    return lars.run(1, stat1, stat2, modelTestValue, stat4, stat5);
}

int CSM_LARS::restorepara(unsigned int* rows, unsigned int* cols) {
    TextInput input(std::string(datapath_) + "output_X_Y.txt");
    skip_to_trailer(input);
    std::string word;
    input.word(word);
    if (word.substr(0, 3) != "ara") {
        std::cerr << "find error read output_X_Y.txt\n\n";
        std::exit(0);
    }
    int row = 0;
    int col = 0;
    input.integer(row);
    input.integer(col);
    if (row < 0) return 1;
    *rows = static_cast<unsigned int>(row);
    if (col < 0) return 1;
    *cols = static_cast<unsigned int>(col);
    return 0;
}

}  // namespace vort
