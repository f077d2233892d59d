// Cells into groups, all by hand. Cells and groups are numbered from 1.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;

class CsmClustering : public BuilderTest {
  protected:
    CsmClustering() {
        write_settings({20, 1});
        csm_ = std::make_unique<CSM>(prefix_);
    }

    std::unique_ptr<CSM> csm_;
};

// 1-based for the interface.
template <typename T>
std::vector<T> from_one(std::vector<T> values) {
    values.insert(values.begin(), T{});
    return values;
}

TEST_F(CsmClustering, KmeansOnCellMeans) {
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
        // An empty group's centre is 0: the second of three draws the cell of mean 0 from the
        // third.
        {"an empty group draws", {1, 0}, {1, 1}, 3, {1, 2}},
        {"as many groups as cells", {3, 2, 1}, {1, 1, 1}, 3, {1, 2, 3}},
        {"cells of no individual", {5, -5, 5}, {0, 0, 0}, 2, {1, 1, 1}},
        {"a cell of no individual has mean 0", {-1, 7, 1}, {1, 0, 1}, 3, {3, 2, 1}},
        {"one cell", {1}, {1}, 1, {1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto sum = from_one(c.sum);
        auto count = from_one(c.count);
        std::vector<int> groups(sum.size(), -1);
        csm_->cluster(sum.data(), count.data(), groups.data(), static_cast<int>(c.sum.size()), c.g);
        EXPECT_EQ(groups, [&] {
            auto expected = from_one(c.groups);
            expected[0] = -1;
            return expected;
        }());
    }
}

// Which of the tests has the smallest p-value was worked out apart from the program, with the upper
// tails erfc(sqrt(T / 2)) and exp(-T / 2); in each row it is smaller than a third of the next.
TEST_F(CsmClustering, SingleMarkerFollowsTheBestTest) {
    using Triple = std::array<int, 3>;
    const struct {
        const char* best;
        Triple cases;
        Triple controls;
        Triple two_groups;
        Triple three_groups;
    } rows[] = {
        {"A, p 0.0006", {7, 5, 8}, {19, 19, 2}, {1, 1, 2}, {1, 1, 2}},
        {"B, C better than A", {38, 1, 1}, {6, 1, 3}, {1, 2, 2}, {1, 2, 3}},
        {"B, A better than C", {14, 5, 1}, {2, 2, 6}, {1, 1, 2}, {1, 2, 3}},
        {"C, p 2e-6", {13, 5, 2}, {3, 31, 6}, {1, 2, 2}, {1, 2, 2}},
        {"D, C better than A", {14, 14, 12}, {4, 31, 5}, {1, 2, 2}, {1, 2, 3}},
        {"D, A better than C", {18, 3, 19}, {3, 5, 2}, {1, 1, 2}, {1, 2, 3}},
        {"no cell at all: A, C and B are 0.5, D never better", {}, {}, {1, 1, 2}, {1, 1, 2}},
        {"one cell: A 0.48, B and C not a number", {10, 0, 0}, {10, 0, 0}, {1, 1, 2}, {1, 1, 2}},
        {"two cells; a third of none", {9, 1, 0}, {1, 9, 0}, {1, 2, 2}, {1, 2, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.best);
        auto cases = from_one(std::vector<int>(row.cases.begin(), row.cases.end()));
        auto controls = from_one(std::vector<int>(row.controls.begin(), row.controls.end()));
        const int n1 = row.cases[0] + row.cases[1] + row.cases[2];
        const int n2 = row.controls[0] + row.controls[1] + row.controls[2];
        csm_->case_num = n1 > 0 ? n1 : 10;
        csm_->Sample_size = csm_->case_num + (n2 > 0 ? n2 : 10);
        for (const int g : {2, 3}) {
            std::vector<int> groups(4, -1);
            csm_->OneMarkerCluster(nullptr, cases.data(), controls.data(), groups.data(), 3, g);
            const Triple& expected = g == 2 ? row.two_groups : row.three_groups;
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), groups.begin() + 1))
                << ::testing::PrintToString(groups);
        }
    }
    for (const int g : {1, 4}) {
        int counts[4] = {0, 1, 1, 1};
        int groups[5];
        const auto cluster = [&] {
            console_on_standard_error();
            csm_->OneMarkerCluster(nullptr, counts, counts, groups, 3, g);
        };
        EXPECT_EXIT(cluster(), ExitedWithCode(0),
                    "^find error \\(nclass>3\\) when run OneMarkerCluster \n$");
    }
}

using Method = void (CSM::*)(double*, int*, int*, int*, int, int);

TEST_F(CsmClustering, AlternativeMethods) {
    csm_->Sample_size = 20;
    csm_->case_num = 10;
    const struct {
        const char* name;
        std::vector<Method> methods;
        std::vector<double> value;
        std::vector<int> cases;
        std::vector<int> controls;
        int g;
        std::vector<int> groups;
    } rows[] = {
        // Centres 0.5 and -0.5, then 0.55 and 0 (no positive value), 0.725 and 0.2, 1 and 0.325.
        {"only positive values move a centre",
         {&CSM::cluster1, &CSM::cluster3},
         {1, 0.45, 0.2, -1},
         {1, 1, 1, 1},
         {0, 0, 0, 0},
         2,
         {1, 2, 2, 2}},
        // Cell 2 is placed as 0 and weighs as 5: groups go from 1 1 2 to 2 2 2 to 1 1 1 and so on,
        // and stand at 1 1 1 after the 99th pass.
        {"no end in sight",
         {&CSM::cluster1, &CSM::cluster3},
         {1, 5, -1},
         {1, 0, 1},
         {0, 0, 0},
         2,
         {1, 1, 1}},
        {"all equal",
         {&CSM::cluster1, &CSM::cluster3},
         {2, 2, 2},
         {1, 1, 1},
         {1, 1, 1},
         2,
         {1, 1, 1}},
        // The last in order is nobody's right partner but the first candidate's: 1 and 1.05, though
        // closest, stay apart.
        {"nearest but last",
         {&CSM::cluster4},
         {0, 0.1, 1, 1.05},
         {1, 1, 1, 1},
         {0, 0, 0, 0},
         3,
         {1, 1, 2, 3}},
        {"nearest but last, again",
         {&CSM::cluster4},
         {0, 0.1, 1, 1.05},
         {1, 1, 1, 1},
         {0, 0, 0, 0},
         2,
         {1, 1, 1, 2}},
        {"first candidate reaches the last", {&CSM::cluster4}, {3, 1}, {1, 1}, {0, 0}, 1, {1, 1}},
        {"enough already", {&CSM::cluster4}, {3, 1, 2}, {1, 1, 1}, {0, 0, 0}, 3, {1, 2, 3}},
        // 0.5 and 0.7 merge at 0.6, 0 is then at 0.6 from it and 1.1 at 0.5: the average of the two
        // inputs, not of cluster values, decides; 9 stands last.
        {"averages",
         {&CSM::cluster4},
         {0.5, 9, 1.1, 0, 0.7},
         {1, 1, 1, 1, 1},
         {0, 0, 0, 0, 0},
         3,
         {1, 2, 1, 3, 1}},
        // An empty cell stands at 0, next to 0.1, and takes its 8 into the average 4.05, next to 5.
        {"an empty cell's value",
         {&CSM::cluster4},
         {8, 0.1, 0.3, 5, 9},
         {0, 1, 1, 1, 1},
         {0, 0, 0, 0, 0},
         3,
         {1, 1, 2, 1, 3}},
        {"one merge at least",
         {&CSM::cluster2},
         {0, 0.1, 1, 1.05},
         {1, 1, 1, 1},
         {0, 0, 0, 0},
         4,
         {1, 1, 2, 3}},
        // Cells 1 and 2, 5 cases and 3 controls of 10 each, are then at 0.2 sqrt(20.83) / 2 =
        // 0.456,
        // next to 0.5; undivided, 0.913 would be next to 0.93.
        {"risk difference per cell",
         {&CSM::cluster2},
         {0, 0.1, 0.5, 0.93, 9},
         {2, 3, 1, 1, 1},
         {3, 0, 1, 1, 1},
         3,
         {1, 1, 1, 2, 3}},
        // More controls than cases: the value is negative, far from 0.5.
        {"risk difference has a sign",
         {&CSM::cluster2},
         {0, 0.1, 0.5, 0.93, 9},
         {0, 3, 1, 1, 1},
         {2, 3, 1, 1, 1},
         3,
         {1, 1, 2, 2, 3}},
        // Two cells are out of reach of a merge; no number is above g.
        {"out of reach", {&CSM::cluster2}, {3, 1}, {1, 1}, {0, 0}, 1, {1, 1}},
        {"out of reach, two groups", {&CSM::cluster2}, {3, 1}, {1, 1}, {0, 0}, 2, {1, 2}},
    };
    for (const auto& row : rows) {
        for (const Method method : row.methods) {
            SCOPED_TRACE(row.name);
            auto value = from_one(row.value);
            auto cases = from_one(row.cases);
            auto controls = from_one(row.controls);
            std::vector<int> groups(value.size());
            (*csm_.*method)(value.data(), cases.data(), controls.data(), groups.data(),
                            static_cast<int>(row.value.size()), row.g);
            EXPECT_EQ(groups, from_one(row.groups));
        }
    }
}

}  // namespace
}  // namespace vort::testing
