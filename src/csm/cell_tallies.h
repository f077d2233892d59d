// One order of the phenotype over the genotype cells of a marker set, and its groupings.
//
// This is the plain form, for any phenotype and any clustering; orders of a case-control phenotype
// have a faster one (permuted_statistics.h).
#pragma once

#include <array>
#include <span>

#include "csm/builder_data.h"
#include "csm/set_cells.h"

namespace vort {

// A value for each cell or group, from element 1 on.
template <typename T>
using CellArray = std::array<T, kMostCells + 2>;

// Cells 1 .. ncell: individuals with a positive phenotype, the others, and the sum of the phenotype
// from its mean, each cell's terms in the order of the places.
struct CellTallies {
    int ncell = 0;
    CellArray<int> cases{};
    CellArray<int> controls{};
    CellArray<double> sum{};
};

// `phenotype` by place.
CellTallies tally_cells(const SetCells& cells, std::span<const double> phenotype);

// What a grouping needs to know of the whole data set.
struct GroupingRules {
    int set_size;    // markers
    int clustering;  // of pairs, as in BuilderSettings
    int individuals;
    int cases;
    bool quantitative;
    double sigma;

    GroupingRules(const BuilderData& data, const BuilderSettings& settings, int size)
        : set_size(size),
          clustering(settings.clustering),
          individuals(data.individuals()),
          cases(data.cases()),
          quantitative(data.quantitative()),
          sigma(data.sigma()) {}

    int controls() const { return individuals - cases; }
};

struct Grouping {
    CellArray<int> group_of_cell{};  // 1 .. g
    CellArray<int> cases{};          // of groups 1 .. g
    CellArray<int> controls{};
    double statistic = 0;  // how well the groups separate cases from controls
};

// The cells in g >= 2 groups; a single marker has at most 3.
Grouping group_cells(const CellTallies& cells, const GroupingRules& rules, int g);

// The statistic of groups 1 .. g.
double group_statistic(const CellArray<int>& cases, const CellArray<int>& controls,
                       const GroupingRules& rules, int g);

}  // namespace vort
