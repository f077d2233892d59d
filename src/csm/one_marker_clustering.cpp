// Genotype cells of a single marker into risk groups (docs/method.md, section 5): as the best of
// four tests sees them, dominant, recessive or apart.
#include "csm/one_marker_clustering.h"

#include "numeric/distributions.h"

namespace vort {

namespace {

constexpr double kNoStatistic = 0.5;
constexpr double kNoPvalue = 0.5;

// One of the four tests.
struct CellTest {
    double statistic;
    double pvalue;
};

// Pearson's statistic of two proportions: p1/n2 + p2/n1 is the variance of their difference with
// both groups pooled.
CellTest two_proportions(double p1, double p2, double n1, double n2) {
    CellTest test{kNoStatistic, kNoPvalue};
    if (p1 + p2 > 0) {
        test.statistic = (1 / ((1 - p2) / n1 + (1 - p1) / n2) + 1 / (p2 / n1 + p1 / n2)) *
                         ((p1 - p2) * (p1 - p2));
    }
    if (test.statistic > 0) test.pvalue = 1 - lower_tail_chi_square(1, test.statistic).value;
    return test;
}

// The sum over all cells; a p-value of 2 where no cell counts, which no test is worse than.
CellTest three_cells(const int* cases, const int* controls, double n1, double n2) {
    CellTest test{0, 2};
    for (int cell = 1; cell <= 3; ++cell) {
        const double p1 = cases[cell] / n1;
        const double p2 = controls[cell] / n2;
        if (p1 + p2 > 0) test.statistic += ((p1 - p2) * (p1 - p2)) / (p2 / n1 + p1 / n2);
    }
    if (test.statistic > 0) test.pvalue = 1 - lower_tail_chi_square(2, test.statistic).value;
    return test;
}

}  // namespace

OneMarkerTests test_one_marker(const int* case_count, const int* control_count, double n1,
                               double n2) {
    const int* a = case_count;
    const int* b = control_count;
    const CellTest A = two_proportions(a[3] / n1, b[3] / n2, n1, n2);
    const CellTest B =
        two_proportions((2 * a[1] + a[2]) / (2 * n1), (2 * b[1] + b[2]) / (2 * n2), 2 * n1, 2 * n2);
    const CellTest C = two_proportions(a[1] / n1, b[1] / n2, n1, n2);
    const CellTest D = three_cells(a, b, n1, n2);
    OneMarkerTests tests{'A', C.statistic < A.statistic};
    double best_pvalue = A.pvalue;
    const auto compare = [&](char name, const CellTest& test) {
        if (!(test.pvalue < best_pvalue)) return;
        tests.best = name;
        best_pvalue = test.pvalue;
    };
    compare('B', B);
    compare('C', C);
    compare('D', D);
    return tests;
}

void group_one_marker(const OneMarkerTests& tests, int g, int* group_of_cell) {
    group_of_cell[1] = 1;
    group_of_cell[2] = 2;
    group_of_cell[3] = 2;
    const bool by_all_cells = tests.best == 'B' || tests.best == 'D';
    if (by_all_cells && g == 3) {
        group_of_cell[3] = 3;
    } else if (tests.best == 'A' || (by_all_cells && tests.first_pair_closer)) {
        group_of_cell[2] = 1;
    }
}

}  // namespace vort
