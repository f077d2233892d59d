// Bounds of the clusterings on a line.
#pragma once

namespace vort {

constexpr int kMostCells = 27;   // a set of three markers has as many
constexpr int kMostPasses = 99;  // of k-means

}  // namespace vort
