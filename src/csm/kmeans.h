// K-means of a few values on a line, shared by the clusterings that differ in where a centre moves.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace vort {

// The centre nearest to a value, 1 .. g; ties go to the lowest.
inline int nearest_centre(double value, const std::vector<double>& centre) {
    int nearest = 1;
    for (int j = 2; j < static_cast<int>(centre.size()); ++j) {
        if (std::abs(value - centre[j]) < std::abs(value - centre[nearest])) nearest = j;
    }
    return nearest;
}

// Divides value[1 .. size-1] into groups 1 .. g: group_of_cell[1 .. size-1]. centre_of(j) is to
// give the centre of group j as group_of_cell then stands. Every cell starts as a group of its
// own, so that the first pass always counts as a change where there are more cells than groups.
template <typename CentreOf>
void kmeans_on_a_line(const std::vector<double>& value, int* group_of_cell, int g,
                      CentreOf centre_of) {
    constexpr int kMostPasses = 99;
    const int ncell = static_cast<int>(value.size()) - 1;
    const auto [min, max] = std::minmax_element(value.begin() + 1, value.end());
    std::vector<double> centre(static_cast<std::size_t>(g) + 1);
    for (int j = 1; j <= g; ++j) centre[j] = *max - (j - 0.5) * (*max - *min) / g;
    for (int c = 1; c <= ncell; ++c) group_of_cell[c] = c;
    std::vector<int> next(value.size());
    for (int pass = 0; pass < kMostPasses; ++pass) {
        bool changed = false;
        for (int c = 1; c <= ncell; ++c) {
            next[c] = nearest_centre(value[c], centre);
            changed = changed || next[c] != group_of_cell[c];
        }
        if (!changed) return;
        std::copy(next.begin() + 1, next.end(), group_of_cell + 1);
        for (int j = 1; j <= g; ++j) centre[j] = centre_of(j);
    }
}

}  // namespace vort
