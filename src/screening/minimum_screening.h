// Screens a data set from its counts, computing only the p-values that are shown.
#pragma once

#include <array>
#include <vector>

#include "numeric/chi_square_lanes.h"
#include "numeric/instructions.h"
#include "screening/counted_data_sets.h"
#include "screening/five_model_kernel.h"
#include "screening/screening_result.h"

namespace vort {

// Largest numbers of missing genotypes in cases and in controls that a marker is kept with.
struct MissingLimits {
    int cases;
    int controls;
};

class MinimumScreening {
  public:
    MinimumScreening(const CountedDataSets& counts, int markers, GroupSizes sizes,
                     MissingLimits limits, Instructions instructions);

    // False where the statistics of groups of these sizes could not be computed in lanes.
    static bool fits(GroupSizes sizes);

    // The result of the data set whose packed counts these are. Valid until the next call.
    ScreeningResult& screen(const int* packed);

  private:
    struct Model {
        int df;
        double statistic;
    };
    using Models = std::array<Model, kModels>;

    void compute_block(const int* packed, int first, int size);
    bool is_dropped(int slot) const;
    Models models_of(int slot) const;
    void list_significant(int slot, int marker);
    void queue_candidates(int slot, int marker);
    void list_minimum_significant();

    const CountedDataSets& counts_;
    int markers_;
    GroupSizes sizes_;
    MissingLimits limits_;
    Instructions instructions_;
    ChiSquareQueue queue_;  // tags are columns, from 0
    ScreeningResult result_;
    MarkerBlock block_{};
};

}  // namespace vort
