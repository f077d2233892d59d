// The lines of markers.tsv, one marker at a time.
#pragma once

#include <span>
#include <vector>

#include "genotypes/marker_info.h"
#include "results/marker_row.h"
#include "results/run_record.h"
#include "screening/five_model_test.h"

namespace vort {

// The tests of one marker by its counts, with p-values that do not end at 1e-16. A test whose
// statistic is undefined (a marker or model without variation, a group without genotypes) is not
// available. Statistics as in docs/method.md, section 1, without what stands there for the
// undefined ones.
void fill_tests(const MarkerCounts& counts, MarkerRow& row);

// Markers that are dropped have no ranks, tests or p-values.
class MarkerRows {
  public:
    // counts[j]: of column j. `model`: columns of the markers in the model. Nothing is owned but
    // the counts.
    MarkerRows(std::span<const MarkerInfo> markers, std::vector<MarkerCounts> counts,
               const RunRecord& record, std::span<const int> model);

    std::size_t size() const { return markers_.size(); }

    // Line j; P_MIN, EMP1 and EMP2 as they are written, so that whatever is made of the rows can be
    // made anew from the file. Safe from many threads at once.
    MarkerRow row(std::size_t j) const;

    long dropped() const;

  private:
    bool is_dropped(std::size_t j) const;
    void fill_ranks(std::size_t j, MarkerRow& row) const;

    std::span<const MarkerInfo> markers_;
    std::vector<MarkerCounts> counts_;
    const RunRecord& record_;
    std::vector<int> rank_;         // of each column, from 1; 0 where it is not known
    std::vector<char> in_model_;    // of each column
    std::vector<double> smallest_;  // of each permuted data set, ascending
    int most_missing_cases_ = 0;
    int most_missing_controls_ = 0;
};

// The median of additive statistics over that of their distribution (Devlin & Roeder, Biometrics
// 1999; 55, 997-1004). Those that are not available are left out; without any it is neither.
double lambda_gc(std::vector<double> statistics);

}  // namespace vort
