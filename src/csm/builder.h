// The builder of base learners, phase by phase.
//
// From one data set's best-ranked markers to the design matrix: the sets of one and of two markers
// are searched for association, the genotype cells of each kept set are clustered into risk groups,
// and each group becomes a column. The search draws no random numbers; how many the rest draws
// follows from it, so that data sets can be worked on side by side:
//
//     BuilderData data(input, settings, quantitative, threads);
//     const KeptSets kept = search_sets(data, settings, threads, wanted, room);
//     // builder_draws(data, kept) numbers later the next data set's draws begin.
//     for each set s: records.push_back(score_set(data, settings, kept, s, start, ...));
//     Design design = ...
#pragma once

#include <vector>

#include "common/settings.h"
#include "common/transcript.h"
#include "csm/builder_data.h"
#include "csm/design.h"
#include "csm/marker_set.h"
#include "csm/pair_search.h"
#include "numeric/generator.h"

namespace vort {

// What the search keeps, best first within each size.
struct KeptSets {
    std::vector<int> markers;  // from 1
    std::vector<int> pairs;    // numbers of pairs, from 1
    Transcript marker_text{false};
    Transcript pair_text{false};
    PairSearchStatistics pair_statistics;

    int count() const { return static_cast<int>(markers.size() + pairs.size()); }
    // Set s = 0 .. count() - 1, single markers first.
    MarkerSet set(int s, int m) const;
};

// `room` is used again from search to search.
KeptSets search_sets(const BuilderData& data, const BuilderSettings& settings, int threads,
                     bool wanted, PairCodeRoom& room);

// Numbers drawn for a data set: a missing genotype takes one, a kept set score_draws().
std::int64_t builder_draws(const BuilderData& data, const KeptSets& kept);

struct ScoredSet {
    ClusterRecord record;
    Transcript text;
};

// The clustering of kept set s. `start` is where the data set's draws begin; `announce` as in
// best_clustering().
ScoredSet score_set(const BuilderData& data, const BuilderSettings& settings, const KeptSets& kept,
                    int s, const Generator& start, bool announce, bool wanted);

// What the console shows of a data set, in the order of the phases, as far as its sets are scored.
void print_build(const BuilderData& data, const BuilderInput& input, const Imputation& imputation,
                 const KeptSets& kept, const std::vector<ScoredSet>& scored, bool permuted,
                 Transcript& out);

}  // namespace vort
