// Cells into groups, all by hand. Cells and groups are numbered from 1.
#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "csm/alternative_clusterings.h"
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

TEST(AlternativeClusterings, ByHand) {
    using Method = void (*)(const CellTable&, int, int*);
    const Method c1 = cluster_by_positive_means;
    const Method c2 = [](const CellTable& cells, int g, int* group) {
        merge_by_risk_difference(cells, 10, 10, g, group);
    };
    const Method c4 = merge_by_average;
    const std::vector<double> near = {0, 0.1, 1, 1.05};
    const struct {
        const char* name;
        Method method;
        int g;
        std::vector<int> groups;
        std::vector<double> value;
        std::vector<int> cases = {1, 1, 1, 1, 1};
        std::vector<int> controls = {0, 0, 0, 0, 0};
    } rows[] = {
        // Centres 0.5 and -0.5, then 0.55 and 0 (no positive value), 0.725 and 0.2, 1 and 0.325.
        {"only positive values move a centre", c1, 2, {1, 2, 2, 2}, {1, 0.45, 0.2, -1}},
        // Cell 2 is placed as 0 and weighs as 5: groups go from 1 1 2 to 2 2 2 to 1 1 1 and so on,
        // and stand at 1 1 1 after the 99th pass.
        {"no end in sight", c1, 2, {1, 1, 1}, {1, 5, -1}, {1, 0, 1}},
        // The last in order is nobody's right partner but the first candidate's: 1 and 1.05, though
        // closest, stay apart.
        {"nearest but last", c4, 3, {1, 1, 2, 3}, near},
        {"first candidate reaches the last", c4, 1, {1, 1}, {3, 1}},
        // 0.5 and 0.7 merge at 0.6, 0 is then at 0.6 from it and 1.1 at 0.5: the average of the two
        // inputs, not of cluster values, decides; 9 stands last.
        {"averages", c4, 3, {1, 2, 1, 3, 1}, {0.5, 9, 1.1, 0, 0.7}},
        // An empty cell stands at 0, next to 0.1, and takes its 8 into the average 4.05, next to 5.
        {"an empty cell", c4, 3, {1, 1, 2, 1, 3}, {8, 0.1, 0.3, 5, 9}, {0, 1, 1, 1, 1}},
        {"one merge at least", c2, 4, {1, 1, 2, 3}, near},
        // Cells 1 and 2, 5 cases and 3 controls of 10 each, are then at 0.2 sqrt(20.83) / 2 = 0.456
        // next to 0.5; undivided, 0.913 would be next to 0.93. With more controls than cases the
        // value is negative, far from 0.5.
        {"per cell", c2, 3, {1, 1, 1, 2, 3}, {0, .1, .5, .93, 9}, {2, 3, 1, 1, 1}, {3, 0, 1, 1, 1}},
        {"signed", c2, 3, {1, 1, 2, 2, 3}, {0, .1, .5, .93, 9}, {0, 3, 1, 1, 1}, {2, 3, 1, 1, 1}},
        {"two cells out of reach; no number above g", c2, 1, {1, 1}, {3, 1}},
    };
    for (const auto& row : rows) {
        const auto value = from_one(row.value);
        const auto cases = from_one(row.cases);
        const auto controls = from_one(row.controls);
        std::vector<int> groups(value.size());
        row.method(
            {static_cast<int>(row.value.size()), value.data(), cases.data(), controls.data()},
            row.g, groups.data());
        EXPECT_EQ(groups, from_one(row.groups)) << row.name;
    }
}

}  // namespace
}  // namespace vort::testing
