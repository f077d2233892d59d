// Cells into groups, all by hand. Cells and groups are numbered from 1.
#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "csm/cell_clustering.h"
#include "csm/cluster_kernel.h"
#include "csm/one_marker_clustering.h"
#include "support/builder_study.h"
#include "support/instruction_sets.h"

namespace vort::testing {
namespace {

// 1-based for the interface.
template <typename T>
std::vector<T> from_one(std::vector<T> values) {
    values.insert(values.begin(), T{});
    return values;
}

TEST(CellClustering, KmeansOnCellMeans) {
    const struct {
        const char* name;
        std::vector<double> sum;
        std::vector<int> count;
        int g;
        std::vector<int> groups;
    } cases[] = {
        {"centres 0.3 and -0.1", {1, 2, -0.9}, {2, 5, 3}, 2, {1, 1, 2}},
        // Centres 0.75 and 0.25 take 0.55 up; then group 1's individuals have the mean 0.955, group
        // 2's 0.405, and 0.55 goes back. The mean of the cells, 0.775, would hold it.
        {"individuals weigh", {0, 4.05, 0.55, 9}, {1, 9, 1, 9}, 2, {2, 2, 2, 1}},
        {"equal means: the lower group", {1, 2, 3}, {2, 4, 6}, 3, {1, 1, 1}},
        {"a tie between centres", {1, 0, 0.5}, {1, 1, 1}, 2, {1, 2, 1}},
        // An empty group's centre is 0: the second of three draws the mean 0 from the third.
        {"an empty group draws", {1, 0}, {1, 1}, 3, {1, 2}},
        {"as many groups as cells", {3, 2, 1}, {1, 1, 1}, 3, {1, 2, 3}},
    };
    for (const auto& c : cases) {
        ClusteredCells<double> cells;
        cells.ncell = static_cast<int>(c.sum.size());
        std::copy(c.sum.begin(), c.sum.end(), cells.sum + 1);
        std::copy(c.count.begin(), c.count.end(), cells.size + 1);
        CellClustering<double> clusters(cells);
        clusters.cluster(c.g);
        for (int cell = 1; cell <= cells.ncell; ++cell) {
            EXPECT_EQ(clusters.group(cell), c.groups[cell - 1]) << c.name;
        }
    }
}

// The groups of a pair against the plain form are a matter of permuted_statistics; here, that the
// sets of instructions agree, about which lanes are unsure, too.
TEST(ClusterKernel, EverySetOfInstructionsAgrees) {
    std::mt19937 random(17);
    for (int round = 0; round < 500; ++round) {
        const int ncell = 2 + static_cast<int>(random() % 8);
        std::vector<int> size(static_cast<std::size_t>(ncell) + 1);
        std::vector<double> cases(size.size() * kLanes);
        for (int c = 1; c <= ncell; ++c) {
            size[c] = 1 + static_cast<int>(random() % 40);
            for (int l = 0; l < kLanes; ++l) {
                cases[c * kLanes + l] = static_cast<double>(random() % unsigned(size[c] + 1));
            }
        }
        const PermutedCells cells{ncell, size.data(), cases.data(), {-0.25, 0.75}, 97, 211, 1e-12};
        for (int g = 2; g <= std::min(ncell, 10); ++g) {
            double expected[kLanes], found[kLanes];
            const unsigned unsure =
                ClusterKernel<Instructions::kPortable>::statistics(cells, g, expected);
            for (const Instructions set : instruction_sets()) {
                const auto compute =
                    kernel_for(set, []<Instructions I>() { return ClusterKernel<I>::statistics; });
                ASSERT_EQ(compute(cells, g, found), unsure) << "round " << round;
                for (int l = 0; l < kLanes; ++l) {
                    ASSERT_EQ(bits(found[l]), bits(expected[l])) << "round " << round;
                }
            }
        }
    }
}

// Which of the tests has the smallest p-value was worked out apart from the program, with the upper
// tails erfc(sqrt(T / 2)) and exp(-T / 2); in each row it is smaller than a third of the next.
TEST(OneMarkerClustering, FollowsTheBestTest) {
    const struct {
        const char* best;
        std::vector<int> cases, controls, two_groups, three_groups;
    } rows[] = {
        {"A, p 0.0006", {7, 5, 8}, {19, 19, 2}, {1, 1, 2}, {1, 1, 2}},
        {"B, C better than A", {38, 1, 1}, {6, 1, 3}, {1, 2, 2}, {1, 2, 3}},
        {"B, A better than C", {14, 5, 1}, {2, 2, 6}, {1, 1, 2}, {1, 2, 3}},
        {"C, p 2e-6", {13, 5, 2}, {3, 31, 6}, {1, 2, 2}, {1, 2, 2}},
        {"D, C better than A", {14, 14, 12}, {4, 31, 5}, {1, 2, 2}, {1, 2, 3}},
        {"D, A better than C", {18, 3, 19}, {3, 5, 2}, {1, 1, 2}, {1, 2, 3}},
        {"no cell at all: A, C and B are 0.5", {0, 0, 0}, {0, 0, 0}, {1, 1, 2}, {1, 1, 2}},
        {"one cell: A 0.48, B and C not a number", {10, 0, 0}, {10, 0, 0}, {1, 1, 2}, {1, 1, 2}},
        {"two cells; a third of none", {9, 1, 0}, {1, 9, 0}, {1, 2, 2}, {1, 2, 2}},
    };
    for (const auto& row : rows) {
        const auto cases = from_one(row.cases);
        const auto controls = from_one(row.controls);
        const int n1 = std::accumulate(cases.begin(), cases.end(), 0);
        const int n2 = std::accumulate(controls.begin(), controls.end(), 0);
        const OneMarkerTests tests =
            test_one_marker(cases.data(), controls.data(), n1 > 0 ? n1 : 10, n2 > 0 ? n2 : 10);
        for (const int g : {2, 3}) {
            std::vector<int> groups(4);
            group_one_marker(tests, g, groups.data());
            EXPECT_EQ(groups, from_one(g == 2 ? row.two_groups : row.three_groups)) << row.best;
        }
    }
}

}  // namespace
}  // namespace vort::testing
