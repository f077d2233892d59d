// The numbers of a run.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "csm/pair_search.h"
#include "ensemble/base_learner.h"

namespace vort {

// How the pairs of all data sets were searched.
struct PairSearchCounts {
    int searches = 0;
    int refined = 0;           // in which bins did not decide the step-up rule
    int ties = 0;              // in which equal p-values mattered
    int plain = 0;             // that took the plain form
    std::int64_t pvalues = 0;  // computed in full

    void add(const PairSearchStatistics& search);
};

struct Result {
    // Without a model every statistic is 0.5 and the p-value is 1.
    bool has_model = false;
    double observed = 0.5;         // S_0 = Cp(stop) / Cp(0), the smaller the stronger
    std::vector<double> permuted;  // S_k of the permuted data sets
    double pvalue = 1;             // #{k : S_k < S_0} / B; not a number where B is 0

    std::vector<BaseLearner> learners;
    std::vector<int> markers;     // in the model: ranks from 1, by decreasing importance
    std::vector<int> importance;  // of these, cut to whole numbers
    std::vector<int> columns;     // genotype column (from 0) of each rank, observed data set

    PairSearchCounts pair_searches;
};

// "P_value.txt".
std::string pvalue_text(const Result& result);

}  // namespace vort
