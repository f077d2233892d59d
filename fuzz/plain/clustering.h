// The genotype cells of a marker set, their groups and how many groups it has, as docs/method.md
// (section 5) defines them: 500 orders drawn number by number, each clustered for each number of
// groups, all 501 statistics ranked by the one sort.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "csm/cluster_record.h"
#include "csm/marker_set.h"
#include "numeric/plain_draws.h"

namespace vort::fuzz {

// A data set in the builder's order. What is in a place is the individual of that place.
struct PlainData {
    int individuals() const { return static_cast<int>(y.size()); }

    std::vector<int> order;                       // individual at each place
    std::vector<double> y;                        // centred
    double mean = 0;                              // before that
    double sigma = 0;                             // variance, divisor n
    int cases = 0;                                // positive phenotypes, before that
    bool quantitative = false;                    // this data set or one before
    std::vector<std::vector<signed char>> codes;  // of each ranked marker, -1 where missing
    std::vector<std::vector<signed char>> imputed;
};

// The record that is kept. Draws 500 n numbers. `markers` of the record, `clustering` of pairs. The
// text gets the groups that are told, behind `announcement`; a set of fewer than two cells stops.
ClusterRecord plain_clustering(const PlainData& data, const MarkerSet& set, int markers,
                               int clustering, const std::string& announcement,
                               testing::PlainGenerator& generator, Transcript& text);

}  // namespace vort::fuzz
