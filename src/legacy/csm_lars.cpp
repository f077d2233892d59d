#include "legacy/csm_lars.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

#include "common/memory_check.h"
#include "common/stop.h"
#include "legacy/default_objects.h"
#include "legacy/design_file.h"
#include "legacy/lars.h"
#include "legacy/on_console.h"

namespace vort {

namespace {

constexpr int kPathLimit = 50;  // residual vectors of the selector, one more than its steps

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
        const std::string path = std::string(datapath_) + "output_X_Y.txt";
        const DesignSize claimed{static_cast<int>(rows), static_cast<int>(cols)};
        if (!can_hold(path, claimed)) stop("find error input file=" + path + '\n');
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
    const auto size = read_design_size(std::string(datapath_) + "output_X_Y.txt");
    if (!size) {
        std::cerr << "find error read output_X_Y.txt\n\n";
        std::exit(0);
    }
    if (size->rows < 0) return 1;
    *rows = static_cast<unsigned int>(size->rows);
    if (size->columns < 0) return 1;
    *cols = static_cast<unsigned int>(size->columns);
    return 0;
}

}  // namespace vort
