// K-means of a few values on a line, shared by the clusterings that differ in where a centre moves.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "csm/kmeans_limits.h"

namespace vort {

// The centre nearest to a value, 1 .. g; ties go to the lowest.
inline int nearest_centre(double value, const double* centre, int g) {
    int nearest = 1;
    double smallest = std::abs(value - centre[1]);
    for (int j = 2; j <= g; ++j) {
        // Written without a branch: which centre is nearest cannot be foreseen.
        const double distance = std::abs(value - centre[j]);
        nearest = distance < smallest ? j : nearest;
        smallest = distance < smallest ? distance : smallest;
    }
    return nearest;
}

// Divides value[1 .. ncell] into groups 1 .. g, both at most kMostCells: group_of_cell[1 .. ncell].
// move_centres(centre) is to store the centres 1 .. g of the groups as group_of_cell then stands.
// Every cell starts as a group of its own, so that the first pass always counts as a change where
// there are more cells than groups.
template <typename MoveCentres>
void kmeans_on_a_line(const double* value, int ncell, int* group_of_cell, int g,
                      MoveCentres move_centres) {
    const auto [min, max] = std::minmax_element(value + 1, value + ncell + 1);
    const double spread = *max - *min;
    std::array<double, kMostCells + 1> centre;
    for (int j = 1; j <= g; ++j) centre[j] = *max - (j - 0.5) * spread / g;
    for (int c = 1; c <= ncell; ++c) group_of_cell[c] = c;
    for (int pass = 0; pass < kMostPasses; ++pass) {
        int changes = 0;
        for (int c = 1; c <= ncell; ++c) {
            const int nearest = nearest_centre(value[c], centre.data(), g);
            changes |= nearest ^ group_of_cell[c];
            group_of_cell[c] = nearest;
        }
        if (changes == 0) return;
        move_centres(centre.data());
    }
}

}  // namespace vort
