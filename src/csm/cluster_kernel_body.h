// The body of ClusterKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstring>

#include "csm/cell_clustering.h"
#include "csm/cluster_kernel.h"

namespace vort {

namespace clustering {

template <typename Doubles>
[[gnu::always_inline]] inline void load_cells(const PermutedCells& cells, int lane,
                                              ClusteredCells<Doubles>& out) {
    Doubles all_cases{};
    double members = 0;
    out.ncell = cells.ncell;
    for (int c = 1; c <= cells.ncell; ++c) {
        std::memcpy(&out.cases[c], cells.cases + c * kLanes + lane, sizeof(Doubles));
        out.size[c] = cells.size[c];
        all_cases += out.cases[c];
        members += out.size[c];
    }
    const Doubles mean =
        (all_cases * cells.value[1] + (members - all_cases) * cells.value[0]) / members;
    for (int c = 1; c <= cells.ncell; ++c) {
        out.sum[c] = out.cases[c] * (cells.value[1] - mean) +
                     (out.size[c] - out.cases[c]) * (cells.value[0] - mean);
    }
}

}  // namespace clustering

template <Instructions kInstructions>
unsigned ClusterKernel<kInstructions>::statistics(const PermutedCells& cells, int g,
                                                  double* statistic) {
    using Types = Register<kInstructions>;
    using Doubles = typename Types::Doubles;
    unsigned unsure = 0;
    for (int lane = 0; lane < kLanes; lane += Types::kSize) {
        ClusteredCells<Doubles> loaded;
        clustering::load_cells(cells, lane, loaded);
        CellClustering<Doubles> clusters(loaded, cells.tolerance);
        clusters.cluster(g);
        const Doubles found = clusters.statistic(g, cells.all_cases, cells.all_controls);
        std::memcpy(statistic + lane, &found, sizeof found);
        for (int l = 0; l < Types::kSize; ++l) {
            unsure |= clusters.unsure()[l] != 0 ? 1U << (lane + l) : 0U;
        }
    }
    return unsure;
}

}  // namespace vort
