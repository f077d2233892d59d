// The base learners of one data set as docs/method.md (sections 2 to 6) defines them: markers and
// pairs tested one after the other, all p-values sorted, the step-up rules from the last one down,
// every random number drawn in its turn.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/settings.h"
#include "plain/clustering.h"
#include "support/random_study.h"

namespace vort::fuzz {

// What data sets leave for those that come after them.
struct PlainCourse {
    testing::PlainGenerator generator;
    bool quantitative = false;  // a phenotype so far was neither 0 nor 1
    bool method_told = false;
};

struct PlainDesign {
    std::string text() const;

    PlainData data;
    std::vector<int> kept_markers;             // from 1
    std::vector<int> kept_pairs;               // numbers of pairs, from 1
    std::vector<double> pair_pvalues;          // elements 1 .. N
    std::vector<ClusterRecord> records;        // as they are read back
    std::vector<double> response;              // rounded
    std::vector<std::vector<double>> columns;  // 0 or 1
    Transcript console = Transcript(true);
    bool complete = false;
};

// Fills the design as far as it comes: a data set that cannot be worked on stops the run. `best`:
// columns by rank.
void build_plainly(const testing::Columns& columns, std::span<const short> phenotypes,
                   std::span<const int> best, const BuilderSettings& settings, bool permuted,
                   PlainCourse& course, PlainDesign& design);

}  // namespace vort::fuzz
