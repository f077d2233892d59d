#include "numeric/recursive_sort.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "numeric/random.h"

namespace vort {
namespace {

using ::testing::ElementsAre;

// A random whole number in 0 .. count - 1.
double below(unsigned count, std::mt19937& random) {
    return static_cast<double>(random() % count);
}

constexpr int kSizes[] = {0, 1, 2, 3, 4, 5, 8, 17, 100, 2000};

// How many numbers have been drawn since init_rand1(), up to 30268, by the first part's cycle.
int draws() {
    int x = 1;
    int count = 0;
    for (; x != RX; x = 171 * x % 30269) ++count;
    return count;
}

TEST(RecursiveSort, SortsValuesInPlace) {
    for (const unsigned distinct : {1u, 3u, 1000000u}) {
        for (const int n : kSizes) {
            std::mt19937 random(n + distinct);
            std::vector<double> a(n);
            for (double& value : a) value = below(distinct, random) * 0.5;
            std::vector<int> whole(n);
            for (int& value : whole) value = static_cast<int>(random() % distinct) - 1;
            std::vector<double> expected = a;
            std::vector<int> whole_expected = whole;
            std::sort(expected.begin(), expected.end());
            std::sort(whole_expected.begin(), whole_expected.end());
            quicksort(a.data(), n);
            iquicksort(whole.data(), n);
            EXPECT_EQ(a, expected) << "n=" << n << " distinct=" << distinct;
            EXPECT_EQ(whole, whole_expected) << "n=" << n << " distinct=" << distinct;
        }
    }
}

using CompanionSort = void (*)(double*, int*, int);

// The companions of b = 1 .. n, elements 0 and n + 1 being checked to stay as they are.
std::vector<int> companions(CompanionSort sort, const std::vector<double>& values) {
    const int n = static_cast<int>(values.size());
    std::vector<double> a = {-7.0};
    a.insert(a.end(), values.begin(), values.end());
    a.push_back(-7.0);
    std::vector<int> b(n + 2);
    for (int i = 0; i <= n + 1; ++i) b[i] = i;
    sort(a.data(), b.data(), n);
    EXPECT_EQ(b.front(), 0);
    EXPECT_EQ(b.back(), n + 1);
    for (int i = 0; i <= n + 1; ++i) {
        const bool inside = 1 <= i && i <= n;
        EXPECT_EQ(a[i], inside ? values[b[i] - 1] : -7.0) << "value and companion part at " << i;
    }
    return {b.begin() + 1, b.end() - 1};
}

template <typename Before>
void check_companion_sort(CompanionSort sort, Before before) {
    for (const unsigned distinct : {1u, 3u, 1000000u}) {
        for (const int n : kSizes) {
            SCOPED_TRACE("n=" + std::to_string(n) + " distinct=" + std::to_string(distinct));
            std::mt19937 random(n + distinct);
            std::vector<double> values(n);
            for (double& value : values) value = below(distinct, random) * 0.5;
            std::vector<int> order = companions(sort, values);
            EXPECT_TRUE(std::is_sorted(order.begin(), order.end(), [&](int i, int j) {
                return before(values[i - 1], values[j - 1]);
            }));
            std::sort(order.begin(), order.end());
            for (int i = 0; i < n; ++i) ASSERT_EQ(order[i], i + 1);
        }
    }
}

TEST(RecursiveSort, CarriesTheCompanionAlong) {
    check_companion_sort(quicksortsort, std::less<double>());
    check_companion_sort(Lquicksortsort, std::greater<double>());
}

// The first numbers are 0.0507, 0.6596, 0.9607, 0.8330, 0.5686. Five items by hand: place 0 is the
// pivot (a 2); items 2 and 4 go to the front, 3 and 5 to the back from its end.
TEST(RecursiveSort, LeavesTiesWhereTheSplitPutsThem) {
    init_rand1();
    EXPECT_THAT(companions(quicksortsort, {5, 5, 5}), ElementsAre(1, 3, 2));
    init_rand1();
    EXPECT_THAT(companions(quicksortsort, {2, 1, 2, 1, 2}), ElementsAre(2, 4, 1, 5, 3));
    init_rand1();
    EXPECT_THAT(companions(Lquicksortsort, {1, 2, 1, 2, 1}), ElementsAre(2, 4, 1, 5, 3));
    // Front and back of the first split both go on drawing: the front does so first.
    init_rand1();
    EXPECT_THAT(companions(quicksortsort, {2, 1, 1, 2, 1, 2, 1, 2, 2}),
                ElementsAre(5, 2, 3, 7, 1, 4, 8, 9, 6));
}

TEST(RecursiveSort, DrawsOneNumberASplitOfThreeOrMore) {
    struct Case {
        std::vector<double> values;
        int draws;
    };
    const std::vector<Case> cases = {
        {{}, 0}, {{1}, 0}, {{2, 1}, 0}, {{1, 1, 1}, 1}, {std::vector<double>(50, 1.0), 48}};
    for (Case c : cases) {
        init_rand1();
        quicksort(c.values.data(), static_cast<int>(c.values.size()));
        EXPECT_EQ(draws(), c.draws) << c.values.size() << " values";
    }
}

TEST(RecursiveSort, EqualValuesDoNotDeepenTheRecursion) {
    std::vector<int> a(30000, 1);
    a.back() = 0;
    iquicksort(a.data(), 30000);
    EXPECT_EQ(a.front(), 0);
    EXPECT_EQ(std::count(a.begin(), a.end(), 1), 29999);
}

TEST(RecursiveSort, LosesNoElementAmongNan) {
    std::mt19937 random(4000);
    for (int round = 0; round < 500; ++round) {
        std::vector<double> a(random() % 40);
        for (double& value : a) {
            value = random() % 3 == 0 ? std::numeric_limits<double>::quiet_NaN() : below(5, random);
        }
        const auto numbers = [&a] {
            std::vector<double> found;
            std::copy_if(a.begin(), a.end(), std::back_inserter(found),
                         [](double value) { return value == value; });
            std::sort(found.begin(), found.end());
            return found;
        };
        const std::vector<double> before = numbers();
        quicksort(a.data(), static_cast<int>(a.size()));
        EXPECT_EQ(numbers(), before) << "seed 4000 round " << round;
    }
}

}  // namespace
}  // namespace vort
