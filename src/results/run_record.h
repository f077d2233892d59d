// What a run computes, beside its Result, as it comes by.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "results/marker_row.h"
#include "results/pvalue_quantiles.h"

namespace vort {

// Columns of genotypes count from 0, data sets too, of which 0 is the observed one.
struct RunRecord {
    struct DataSet {
        double smallest_p = kNotAvailable;  // over all markers and models
        int best = -1;                      // column of the marker that has it
        double statistic = kNotAvailable;   // S of its model; not available where none was tried
        int learners = -1;                  // base learners in the model; -1 likewise
    };

    std::vector<DataSet> data_sets;

    // Of each column, where the run screened; empty where it took its rankings from files.
    std::vector<double> observed;          // smallest p-value of its models, as the ranking has it
    std::vector<int> ranking;              // columns by rank
    std::vector<std::uint32_t> no_weaker;  // permuted data sets in which its p-value is no larger

    PvalueQuantiles quantiles;

    int permutations() const { return static_cast<int>(data_sets.size()) - 1; }

    // The data sets that follow on those that are here.
    void append(const RunRecord& next);
};

// A data set that is ranked. Not to be kept beyond the call.
struct ScreenedView {
    int data_set;  // 0 observed
    double smallest_pvalue;
    int best;                         // its marker's column, from 0; -1 where there is none
    std::span<const double> pvalues;  // of each column, the smallest of its models
    std::span<const int> ranking;     // columns by rank; of the observed data set
};

// Keeps the record of data sets `first` .. `first` + `count` - 1, told in this order.
class RunRecorder {
  public:
    // observed[j]: as in RunRecord; needed where the observed data set is not among these.
    RunRecorder(int first, int count, int markers, std::span<const double> observed);

    void screened(const ScreenedView& view);

    RunRecord take() { return std::move(record_); }

  private:
    int first_;
    std::vector<double> observed_;
    RunRecord record_;
};

}  // namespace vort
