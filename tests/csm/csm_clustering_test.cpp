// Cells into groups, all by hand. Cells and groups are numbered from 1.
#include <algorithm>
#include <random>

#include "csm/cluster_kernel.h"
#include "csm/kmeans_limits.h"
#include "numeric/lanes.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

class CsmClustering : public BuilderTest {
  protected:
    std::unique_ptr<CSM> csm_ = builder_of({20, 1});
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
        // An empty group's centre is 0: the second of three draws the mean 0 from the third.
        {"an empty group draws", {1, 0}, {1, 1}, 3, {1, 2}},
        {"as many groups as cells", {3, 2, 1}, {1, 1, 1}, 3, {1, 2, 3}},
        {"a cell of no individual has mean 0", {-1, 7, 1}, {1, 0, 1}, 3, {3, 2, 1}},
    };
    for (const auto& c : cases) {
        auto sum = from_one(c.sum);
        auto count = from_one(c.count);
        std::vector<int> groups(sum.size());
        csm_->cluster(sum.data(), count.data(), groups.data(), static_cast<int>(c.sum.size()), c.g);
        EXPECT_EQ(groups, from_one(c.groups)) << c.name;
    }
}

// Random cells under kLanes random orders, as the permuted orders of a score come.
struct LaneStudy {
    explicit LaneStudy(unsigned seed) : random(seed) {
        const int ncell = 2 + static_cast<int>(random() % (seed % 10 == 0 ? kMostCells - 1 : 8));
        for (int c = 1; c <= ncell; ++c) size.push_back(1 + static_cast<int>(random() % 40));
        sum.resize(size.size() * kLanes);
        cases.resize(sum.size());
        const double value[2] = {-0.25, 0.75};
        for (int l = 0; l < kLanes; ++l) {
            std::vector<double> y;
            for (int c = 1; c <= ncell; ++c) {
                for (int i = 0; i < size[c]; ++i) y.push_back(value[random() % 3 == 0]);
            }
            double total = 0;
            for (const double each : y) total += each;
            mean[l] = total / static_cast<double>(y.size());
            for (std::size_t c = 1, i = 0; c < size.size(); ++c) {
                for (const std::size_t end = i + size[c]; i < end; ++i) {
                    sum[c * kLanes + l] += y[i] - mean[l];
                    cases[c * kLanes + l] += y[i] > 0;
                }
            }
        }
        cells = {ncell, size.data(), sum.data(), mean, {value[0], value[1]}, 97, 211};
    }

    std::mt19937 random;
    std::vector<int> size = {0};
    std::vector<double> sum;
    std::vector<int> cases;
    double mean[kLanes];
    PermutedCellSums cells;
};

double statistic_of_lane(CSM& csm, LaneStudy& study, int l, int g) {
    std::vector<double> sum(study.size.size());
    for (std::size_t c = 1; c < sum.size(); ++c) sum[c] = study.sum[c * kLanes + l];
    std::vector<int> group(sum.size());
    csm.cluster(sum.data(), study.size.data(), group.data(), study.cells.ncell, g);
    double statistic = 0;
    for (int q = 1; q <= g; ++q) {
        int a = 0, b = 0;
        for (std::size_t c = 1; c < sum.size(); ++c) {
            if (group[c] != q) continue;
            a += study.cases[c * kLanes + l];
            b += study.size[c] - study.cases[c * kLanes + l];
        }
        const double n1 = study.cells.cases, n0 = study.cells.controls;
        const double p1 = a / n1, p0 = b / n0;
        if (p1 + p0 > 0) statistic += ((p1 - p0) * (p1 - p0)) / (p0 / n1 + p1 / n0);
    }
    return statistic;
}

TEST_F(CsmClustering, EveryLaneAgreesWithAnOrderOfItsOwn) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        LaneStudy study(seed);
        const int gmax = std::min(study.cells.ncell, 10);
        for (const auto set :
             {Instructions::kPortable, Instructions::kWide, Instructions::kWidest}) {
            if (set > best_instructions()) continue;
            std::vector<double> statistic(9 * kLanes);
            const auto compute =
                kernel_for(set, []<Instructions I>() { return ClusterKernel<I>::statistics; });
            compute(study.cells, gmax, statistic.data());
            for (int g = 2; g <= gmax; ++g) {
                for (int l = 0; l < kLanes; ++l) {
                    ASSERT_EQ(bits(statistic[(g - 2) * kLanes + l]),
                              bits(statistic_of_lane(*csm_, study, l, g)))
                        << "lane " << l << ", " << g << " groups";
                }
            }
        }
    }
}

// Which of the tests has the smallest p-value was worked out apart from the program, with the upper
// tails erfc(sqrt(T / 2)) and exp(-T / 2); in each row it is smaller than a third of the next.
TEST_F(CsmClustering, SingleMarkerFollowsTheBestTest) {
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
    int groups[4];
    for (const auto& row : rows) {
        auto cases = from_one(row.cases);
        auto controls = from_one(row.controls);
        const int n1 = std::accumulate(cases.begin(), cases.end(), 0);
        const int n2 = std::accumulate(controls.begin(), controls.end(), 0);
        csm_->case_num = n1 > 0 ? n1 : 10;
        csm_->Sample_size = csm_->case_num + (n2 > 0 ? n2 : 10);
        for (const int g : {2, 3}) {
            csm_->OneMarkerCluster(nullptr, cases.data(), controls.data(), groups, 3, g);
            EXPECT_EQ(std::vector<int>(groups + 1, groups + 4),
                      g == 2 ? row.two_groups : row.three_groups)
                << row.best;
        }
    }
    for (const int g : {1, 4}) {
        int counts[4] = {0, 1, 1, 1};
        expect_end([&] { csm_->OneMarkerCluster(nullptr, counts, counts, groups, 3, g); },
                   "^find error \\(nclass>3\\) when run OneMarkerCluster \n$");
    }
}

TEST_F(CsmClustering, AlternativeMethods) {
    csm_->Sample_size = 20;
    csm_->case_num = 10;
    const auto c1 = &CSM::cluster1;
    const auto c2 = &CSM::cluster2;
    const auto c4 = &CSM::cluster4;
    const std::vector<double> near = {0, 0.1, 1, 1.05};
    const struct {
        const char* name;
        decltype(c1) method;  // cluster3 is cluster1
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
        for (const auto method : {row.method, row.method == c1 ? &CSM::cluster3 : row.method}) {
            auto value = from_one(row.value);
            auto cases = from_one(row.cases);
            auto controls = from_one(row.controls);
            std::vector<int> groups(value.size());
            ((*csm_).*method)(value.data(), cases.data(), controls.data(), groups.data(),
                              static_cast<int>(row.value.size()), row.g);
            EXPECT_EQ(groups, from_one(row.groups)) << row.name;
        }
    }
}

}  // namespace
}  // namespace vort::testing
