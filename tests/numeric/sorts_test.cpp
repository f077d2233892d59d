// The sorts on all shapes of input, and where they leave equal values.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <tuple>
#include <vector>

#include "numeric/index_sort.h"
#include "numeric/random.h"
#include "numeric/recursive_sort.h"

namespace vort {
namespace {

using Values = std::vector<double>;
using Order = std::vector<int>;
constexpr int kGuard = -77;

// Whole numbers: distinct, of three values, nearly all or all equal, ascending, descending, up and
// down, and a saw.
std::vector<Values> inputs() {
    std::mt19937 random(1000);
    std::vector<Values> all;
    for (const int n : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 17, 40, 100, 2000}) {
        all.resize(all.size() + 8, Values(n));
        for (int i = 0; i < n; ++i) {
            const auto r = static_cast<int>(random() % (1u << 30));
            const int shapes[] = {r, r % 3, r % 10 ? 8 : 2, 1, i, n - i, std::min(i, n - i), i % 7};
            for (int s = 0; s < 8; ++s) all[all.size() - 8 + s][i] = shapes[s];
        }
    }
    return all;
}

// The values moved up by `first` elements, and no element behind them: whatever reads further is
// caught by the address sanitizer.
template <typename T>
std::vector<T> moved_up(const Values& values, int first) {
    std::vector<T> result(first, static_cast<T>(kGuard));
    for (const double value : values) result.push_back(static_cast<T>(value));
    return result;
}

// Each way to order gives the element numbers 1 .. n.
template <typename T, auto sort>
Order index_of(const Values& values) {
    std::vector<T> a = moved_up<T>(values, 1);
    Order index(a.size(), kGuard);
    sort(a.data(), index.data(), static_cast<int>(values.size()));
    EXPECT_EQ(index[0], kGuard);
    return {index.begin() + 1, index.end()};
}

template <auto sort>
Order companions(const Values& values) {
    Values a = moved_up<double>(values, 1);
    Order b(a.size());
    std::iota(b.begin(), b.end(), 0);
    sort(a.data(), b.data(), static_cast<int>(values.size()));
    EXPECT_TRUE(a[0] == kGuard && b[0] == 0);
    for (std::size_t i = 1; i < a.size(); ++i) EXPECT_EQ(a[i], values[b[i] - 1]) << i;
    return {b.begin() + 1, b.end()};
}

template <typename T, auto sort>
void check_in_place(const Values& values, int first) {
    std::vector<T> a = moved_up<T>(values, first);
    std::vector<T> expected = a;
    std::sort(expected.begin() + first, expected.end());
    sort(a.data(), static_cast<int>(values.size()));
    EXPECT_EQ(a, expected);
}

bool is_permutation_from_one(Order order) {
    std::sort(order.begin(), order.end());
    int next = 1;
    return std::all_of(order.begin(), order.end(), [&](int element) { return element == next++; });
}

TEST(Sorts, OrderEveryInputAndLoseNoElement) {
    for (const Values& values : inputs()) {
        SCOPED_TRACE(::testing::PrintToString(values));
        check_in_place<double, Quicksort>(values, 1);
        check_in_place<int, iQuicksort>(values, 1);
        check_in_place<double, quicksort>(values, 0);
        check_in_place<int, iquicksort>(values, 0);
        const Order index = index_of<double, Quickindex>(values);
        EXPECT_EQ((index_of<int, iQuickindex>(values)), index);
        Values a = values;
        Order zero_based(a.size());
        Quickindex1(a.data(), zero_based.data(), static_cast<int>(a.size()));
        for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(zero_based[i] + 1, index[i]);

        Order descending = companions<Lquicksortsort>(values);
        std::reverse(descending.begin(), descending.end());
        for (const Order& order : {index, companions<quicksortsort>(values), descending}) {
            EXPECT_TRUE(is_permutation_from_one(order));
            for (std::size_t i = 1; i < order.size(); ++i) {
                EXPECT_LE(values[order[i - 1] - 1], values[order[i] - 1]) << i;
            }
        }
    }
}

// Traced by hand. Quickindex partitions from eight items on. The recursive sorts draw a pivot for
// three items or more (the first numbers are 0.0507, 0.6596, 0.9607, 0.8330): of five, item 1 (a 2)
// is the pivot, items 2 and 4 go to the front, 3 and 5 to the back from its end. Where both parts
// go on drawing, the front does so first.
TEST(Sorts, LeaveTiesWhereThePartitionPutsThem) {
    const std::tuple<Order (*)(const Values&), Values, Order, int> cases[] = {
        {index_of<double, Quickindex>, {2, 1, 2, 1, 2, 1, 2}, {2, 4, 6, 1, 3, 5, 7}, 0},
        {index_of<double, Quickindex>, {1, 1, 1, 1, 1, 1, 1, 1}, {1, 6, 7, 4, 5, 2, 3, 8}, 0},
        {index_of<double, Quickindex>, {2, 1, 2, 1, 2, 1, 2, 1}, {8, 6, 4, 2, 5, 3, 7, 1}, 0},
        {companions<quicksortsort>, {2, 1, 2, 1, 2}, {2, 4, 1, 5, 3}, 1},
        {companions<Lquicksortsort>, {1, 2, 1, 2, 1}, {2, 4, 1, 5, 3}, 1},
        {companions<quicksortsort>, {2, 1, 1, 2, 1, 2, 1, 2, 2}, {5, 2, 3, 7, 1, 4, 8, 9, 6}, 5}};
    for (const auto& [sort, values, expected, draws] : cases) {
        init_rand1();
        EXPECT_EQ(sort(values), expected);
        const int state = RX;
        init_rand1();
        for (int i = 0; i < draws; ++i) rand1();
        EXPECT_EQ(state, RX) << "not " << draws << " draws";
    }
}

// An order has no meaning here; every element must still be there once.
TEST(Sorts, LoseNoElementAmongNan) {
    std::mt19937 random(3000);
    for (int round = 0; round < 2000; ++round) {
        const unsigned one_in = 1 + random() % 4;
        Values values(random() % 60, std::numeric_limits<double>::quiet_NaN());
        for (double& value : values) {
            if (random() % one_in != 0) value = static_cast<double>(random() % 5);
        }
        EXPECT_TRUE(is_permutation_from_one(index_of<double, Quickindex>(values))) << round;
    }
}

}  // namespace
}  // namespace vort
