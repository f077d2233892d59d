// What a run's models come to, once each data set has its own: the p-value, and the markers by
// importance.
//
// Data sets may have been modelled one after the other, or by tasks that knew nothing of each
// other; nothing here asks which.
#pragma once

#include <string_view>
#include <vector>

#include "ensemble/observed_model.h"
#include "ensemble/result.h"

namespace vort {

// `permuted`: S of each of the `permutations` permuted data sets, empty where the observed one has
// no model, so that none of them was tried. `best`: columns of the observed data set by rank.
Result conclude(const ObservedModel& observed, std::vector<double> permuted, int permutations,
                std::vector<int> best);

// What the console shows of the ensemble stage, in this order: before all, of permuted data set
// d = 1, 2, ... around what was written while it was modelled, of the p-value, and of the markers
// in the model.
void print_ensemble_sizes(const BuilderSettings& settings, Transcript& out);
void print_permutation(int d, std::string_view modelling, Transcript& out);
void print_comparison(const ObservedModel& observed, double statistic, Transcript& out);
void print_pvalue(const Result& result, Transcript& out);
void print_markers(const ObservedModel& observed, const Result& result, Transcript& out);

}  // namespace vort
