// The builder's quick test, search and score told as plainly as they can be, for the members of CSM
// to agree with to the bit. They work on a CSM that has taken a data set in, and change neither it
// nor the random-number state.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "csm/csm.h"

namespace vort::testing {

struct PlainScore {
    double value = 0;
    int best_groups = 0;
    std::unique_ptr<BestClusterInformation> record;  // null where no clustering was possible
    std::string printed;                             // the progress lines
    std::array<int, 3> random_state{};               // as the score leaves it
};

// Members 1 .. k of set number c, in elements 0 .. k-1.
std::vector<int> plain_set(int c, int m, int k);

double plain_quick_test(const CSM& csm, int k, int c);

PlainScore plain_score(CSM& csm, int k, int c);

// Order and number of the sets that the search keeps, in the order in which it scores them.
std::vector<std::pair<int, int>> plain_search(const CSM& csm);

}  // namespace vort::testing
