// The permutations of one marker set, and how many groups its cells are put into by them; see the
// essay in set_score.cpp.
#pragma once

#include "common/settings.h"
#include "common/transcript.h"
#include "csm/builder_data.h"
#include "csm/cluster_record.h"
#include "csm/marker_set.h"
#include "numeric/generator.h"

namespace vort {

// The clustering that is kept of a set. Its orders are drawn from `start` on, score_draws() numbers
// whatever the set is like. `announce`: the method of clustering is told before the first
// clustering. A set with fewer than two cells stops the run.
ClusterRecord best_clustering(const BuilderData& data, const BuilderSettings& settings,
                              const MarkerSet& set, const Generator& start, bool announce,
                              Transcript& transcript);

// Numbers that the orders of one set take.
std::int64_t score_draws(int individuals);

}  // namespace vort
