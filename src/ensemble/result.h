// The numbers of a run.
#pragma once

#include <string>
#include <vector>

#include "csm/pair_search.h"
#include "ensemble/base_learner.h"

namespace vort {

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

    PairSearchStatistics pair_searches;  // how the pairs of all data sets were searched
};

// "P_value.txt".
std::string pvalue_text(const Result& result);

}  // namespace vort
