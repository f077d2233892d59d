// Builder and selector as one call: from a data set to its model statistic.
//
// The two meet only through files: the builder writes "output_X_Y.txt", the selector reads it and
// writes "beta.txt".
#pragma once

#include <array>

#include "legacy/csm.h"

namespace vort {

class CSM_LARS {
  public:
    // The statistic of a data set that has no base learner.
    static constexpr double kNoStatistic = 2147483647.0;

    // `datapath` is put in front of the file names; it is not owned and must outlive the object.
    explicit CSM_LARS(char* datapath);

    // Builds the base learners of data set `current` (unless skip_build is non-zero: the file of an
    // earlier build is used), selects the model and returns Cp(stop) / Cp(0), the smaller the
    // stronger the model, or kNoStatistic. The pointers receive the selector's side statistics
    // where it runs. Unusable files end the program.
    double run(int current, int Sample, int Marker, char** X, short** phenotypes, int** rankings,
               int Permutation, int Replication, int skip_build, double* stat1, double* stat2,
               double* modelTestValue, double* stat4, double* stat5);

    // Dimensions of the design matrix in "output_X_Y.txt". 0, or 1 where one is negative (it, and
    // what stands behind it, is then not stored). A file without them ends the program.
    int restorepara(unsigned int* rows, unsigned int* cols);

    CSM csm;

    // Copies of the builder's settings that the ensemble driver reads.
    int Sample_size;
    int marker_num;
    int csm_replicate;
    int Number_of_permutation;

    // The builder's, after the last build.
    std::array<int, 10> first_codes{};
    std::array<int, 10> last_codes{};

  private:
    void refresh_settings();

    char* datapath_;
};

}  // namespace vort
