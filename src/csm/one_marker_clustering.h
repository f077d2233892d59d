// The pieces of a single marker's clustering, for callers that cluster the same cells many times.
#pragma once

namespace vort {

// What the four tests of a single marker's three cells come to.
struct OneMarkerTests {
    char best;               // 'A' to 'D': carriers of two, alleles, carriers of none, all cells
    bool first_pair_closer;  // the test of carriers of two is stronger than that of none
};

// Counts of cells 1 .. 3; n1 cases and n2 controls in all.
OneMarkerTests test_one_marker(const int* case_count, const int* control_count, double n1,
                               double n2);

// Groups of cells 1 .. 3 for g = 2 or 3.
void group_one_marker(const OneMarkerTests& tests, int g, int* group_of_cell);

}  // namespace vort
