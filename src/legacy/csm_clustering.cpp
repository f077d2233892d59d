// Genotype cells into risk groups, by the engine's clusterings.
#include <cstdlib>
#include <iostream>

#include "csm/alternative_clusterings.h"
#include "csm/cell_clustering.h"
#include "csm/one_marker_clustering.h"
#include "legacy/csm.h"

namespace vort {

void CSM::OneMarkerCluster(double* /*sums*/, int* case_count, int* control_count,
                           int* group_of_cell, int /*ncell*/, int g) {
    if (g <= 1 || g >= 4) {
        std::cout << "find error (nclass>3) when run OneMarkerCluster \n";
        std::exit(0);
    }
    group_one_marker(test_one_marker(case_count, control_count, case_num, Sample_size - case_num),
                     g, group_of_cell);
}

void CSM::cluster(double* cell_sum, int* cell_count, int* group_of_cell, int ncell, int g) {
    // A cell of no individual lies at 0 and weighs next to nothing.
    constexpr double kNobody = 1e-300;
    ClusteredCells<double> cells;
    cells.ncell = ncell;
    for (int c = 1; c <= ncell; ++c) {
        cells.size[c] = cell_count[c] < 1 ? kNobody : cell_count[c];
        cells.sum[c] = cell_count[c] < 1 ? 0 : cell_sum[c];
    }
    CellClustering<double> clusters(cells);
    clusters.cluster(g);
    for (int c = 1; c <= ncell; ++c) group_of_cell[c] = static_cast<int>(clusters.group(c));
}

void CSM::cluster1(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    cluster_by_positive_means({ncell, value, case_count, control_count}, g, group_of_cell);
}

void CSM::cluster2(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    merge_by_risk_difference({ncell, value, case_count, control_count}, case_num,
                             Sample_size - case_num, g, group_of_cell);
}

void CSM::cluster3(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    cluster1(value, case_count, control_count, group_of_cell, ncell, g);
}

void CSM::cluster4(double* value, int* case_count, int* control_count, int* group_of_cell,
                   int ncell, int g) {
    merge_by_average({ncell, value, case_count, control_count}, g, group_of_cell);
}

}  // namespace vort
