// Markers whose genotypes are the same in all individuals.
//
// Neighbouring markers often are. Pairs that differ only in such markers have the same cells, the
// same sums and the same p-value, so that one of them can answer for all.
#pragma once

#include <vector>

#include "csm/marker_planes.h"

namespace vort {

// Of each marker, from 0, the first that has its genotypes: itself, unless there was one before.
std::vector<int> first_twins(const MarkerPlanes& markers);

}  // namespace vort
