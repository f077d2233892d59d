// The false-discovery-rate report of the observed data set: "FDR_results.txt", and the same on the
// console.
#pragma once

#include <span>
#include <vector>

#include "common/diagnostics.h"
#include "common/transcript.h"
#include "genotypes/marker_table.h"
#include "screening/marker_pvalues.h"

namespace vort {

// The Benjamini-Hochberg count: the largest k whose k-th smallest p-value is at most
// k * level / divisor / markers, 0 where there is none; `order` holds 1-based markers by ascending
// p-value, from element 1 on. divisor 1 leaves the level as it is.
int false_discovery_count(std::span<const double> pvalue, std::span<const int> order, double level,
                          double divisor);

// Lists the markers of each model, and of the smallest p-values, whose order `minimum_order` is. A
// file that cannot be opened stops the run, as does a marker table that cannot be used.
void write_fdr_report(const std::string& path, const MarkerPvalues& all,
                      const std::vector<int>& minimum_order, const MarkerTable& table,
                      Transcript& transcript, Diagnostics& diagnostics);

}  // namespace vort
