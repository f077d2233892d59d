// What a run computes, beside its Result, as it comes by.
#pragma once

#include <cstdint>
#include <vector>

#include "results/pvalue_quantiles.h"
#include "vort/analysis.h"

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
};

// Keeps the record. For an analysis with `rank_all`.
class RunRecorder : public Observer {
  public:
    RunRecorder(int data_sets, int markers);

    void screened(const ScreenedView& view) override;
    void modelled(const ModelledView& view) override;

    // Columns of the best markers by rank, for a run that did not screen.
    void take_best(std::span<const int> best);

    const RunRecord& record() const { return record_; }

  private:
    RunRecord record_;
};

}  // namespace vort
