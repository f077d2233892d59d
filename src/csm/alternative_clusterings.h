// Genotype cells into risk groups: methods that may be asked for instead of k-means on cell means.
//
// All divide cells 1 .. ncell into groups 1 .. g; arrays begin at element 1.
#pragma once

namespace vort {

// Nothing is owned.
struct CellTable {
    int ncell;
    const double* value;  // the place of each cell on the line; 0 is taken for an empty cell
    const int* case_count;
    const int* control_count;
};

// Methods 1 and 3: k-means whose centres move to the plain average of their positive values.
void cluster_by_positive_means(const CellTable& cells, int g, int* group_of_cell);

// Method 2, agglomerative: the two neighbouring clusters that lie closest are merged until g are
// left; a merged cluster is placed by the difference in risk. `cases` and `controls` in all.
void merge_by_risk_difference(const CellTable& cells, double cases, double controls, int g,
                              int* group_of_cell);

// Method 4, agglomerative: a merged cluster is placed at the average of its cells' values.
void merge_by_average(const CellTable& cells, int g, int* group_of_cell);

}  // namespace vort
