// The sorts on all shapes of input, and where they leave equal values.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"
#include "support/instruction_sets.h"

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
    for (const int n : {0, 1, 2, 7, 8, 9, 17, 40, 100, 2000}) {
        all.resize(all.size() + 8, Values(n));
        for (int i = 0; i < n; ++i) {
            const auto r = static_cast<int>(random() % (1u << 30));
            const int shapes[] = {r, r % 3, r % 10 ? 8 : 2, 1, i, n - i, std::min(i, n - i), i % 7};
            for (int s = 0; s < 8; ++s) all[all.size() - 8 + s][i] = shapes[s];
        }
    }
    return all;
}

// Values from [1] on, and no element behind them: the address sanitizer catches further reads.
template <typename T>
std::vector<T> moved_up(const Values& values) {
    std::vector<T> result{static_cast<T>(kGuard)};
    for (const double value : values) result.push_back(static_cast<T>(value));
    return result;
}

template <typename T, auto sort>
Order index_of(const Values& values) {
    std::vector<T> a = moved_up<T>(values);
    Order index(a.size(), kGuard);
    sort(a.data(), index.data(), static_cast<int>(values.size()));
    EXPECT_EQ(index[0], kGuard);
    return {index.begin() + 1, index.end()};
}

template <typename T, auto sort>
void check_in_place(const Values& values) {
    std::vector<T> a = moved_up<T>(values);
    std::vector<T> expected = a;
    std::sort(expected.begin() + 1, expected.end());
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
        check_in_place<double, Quicksort>(values);
        check_in_place<int, iQuicksort>(values);
        const Order index = index_of<double, Quickindex>(values);
        EXPECT_EQ((index_of<int, iQuickindex>(values)), index);
        EXPECT_TRUE(is_permutation_from_one(index));
        Values a = values;
        Order zero_based(a.size());
        Quickindex1(a.data(), zero_based.data(), static_cast<int>(a.size()));
        for (std::size_t i = 0; i < a.size(); ++i) {
            EXPECT_EQ(zero_based[i] + 1, index[i]);
            EXPECT_LE(a[zero_based[i == 0 ? 0 : i - 1]], a[zero_based[i]]) << i;
        }
    }
}

// Traced by hand; partitions begin with eight items.
TEST(Sorts, LeaveTiesWhereThePartitionPutsThem) {
    const std::pair<Values, Order> cases[] = {{{2, 1, 2, 1, 2, 1, 2}, {2, 4, 6, 1, 3, 5, 7}},
                                              {{1, 1, 1, 1, 1, 1, 1, 1}, {1, 6, 7, 4, 5, 2, 3, 8}},
                                              {{2, 1, 2, 1, 2, 1, 2, 1}, {8, 6, 4, 2, 5, 3, 7, 1}}};
    for (const auto& [values, order] : cases) {
        EXPECT_EQ((index_of<double, Quickindex>(values)), order);
    }
}

// An order has no meaning here; every element must still be there once.
TEST(Sorts, LoseNoElementAmongNan) {
    std::mt19937 random(3000);
    for (int round = 0; round < 1000; ++round) {
        const unsigned one_in = 1 + random() % 4;
        Values values(random() % 60, std::numeric_limits<double>::quiet_NaN());
        for (double& value : values) {
            if (random() % one_in != 0) value = static_cast<double>(random() % 5);
        }
        EXPECT_TRUE(is_permutation_from_one(index_of<double, Quickindex>(values))) << round;
    }
}

TEST(KeyedSort, OrdersTiesAsThePlainIndexSortDoes) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 20 == 0 ? 20000 : 900));
        // From nearly all keys different to nearly all the same, and from sorted to shuffled.
        const auto values = seed % 4 == 0 ? 1 + random() % 3 : 1 + random() % (3 * n);
        Values key(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
            key[i] = seed % 7 == 0 ? i / 5 : static_cast<double>(random() % values);
        }
        const Order index = index_of<double, Quickindex>(key);
        std::vector<KeyedIndex> items;
        for (int i = 0; i < n; ++i) items.push_back({key[i], i + 1});
        const auto some = static_cast<std::size_t>(random() % n);
        for (const Instructions instructions : vort::testing::instruction_sets()) {
            for (const std::size_t wanted : {items.size(), some, some / 50}) {
                SCOPED_TRACE(::testing::Message() << "seed " << seed << ", wanted " << wanted);
                std::vector<KeyedIndex> sorted = items;
                sort_keyed(sorted, wanted, instructions);
                for (std::size_t i = 0; i < wanted; ++i) ASSERT_EQ(sorted[i].index, index[i]) << i;
            }
        }
    }
}

}  // namespace
}  // namespace vort
