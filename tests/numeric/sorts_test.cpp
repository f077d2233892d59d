// The sorts on all shapes of input, and where they leave equal values.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

// The element numbers from 1 on; with no element behind the values, for the address sanitizer.
template <typename T, auto sort>
Order index_of(const Values& values) {
    std::vector<T> a{-77};
    for (const double value : values) a.push_back(static_cast<T>(value));
    Order index(a.size(), -77);
    sort(a.data(), index.data(), static_cast<int>(values.size()));
    EXPECT_EQ(index[0], -77);
    return {index.begin() + 1, index.end()};
}

void expect_sorted(const Values& values) {
    const Order index = index_of<double, Quickindex>(values);
    Order elements = index;
    std::sort(elements.begin(), elements.end());
    for (std::size_t i = 0; i < index.size(); ++i) ASSERT_EQ(elements[i], i + 1);
    if (std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); })) return;
    EXPECT_EQ((index_of<int, iQuickindex>(values)), index);
    Values sorted = values, a = {-77};  // counted from 1
    std::sort(sorted.begin(), sorted.end());
    a.insert(a.end(), values.begin(), values.end());
    Order zero_based(values.size()), whole(a.begin(), a.end());
    const int n = static_cast<int>(values.size());
    Quickindex1(a.data() + 1, zero_based.data(), n);
    Quicksort(a.data(), n);
    iQuicksort(whole.data(), n);
    for (int i = 0; i < n; ++i) {
        ASSERT_TRUE(zero_based[i] + 1 == index[i] && values[zero_based[i]] == sorted[i]) << i;
        ASSERT_TRUE(a[i + 1] == sorted[i] && whole[i + 1] == sorted[i]) << i;
    }
    EXPECT_TRUE(a[0] == -77 && whole[0] == -77);
}

// Whole numbers: distinct, of three values, nearly all or all equal, ascending, descending, up and
// down, and a saw; then among values that have no order, where no element may be lost.
TEST(Sorts, OrderEveryInputAndLoseNoElement) {
    std::mt19937 random(1000);
    for (const int n : {0, 1, 2, 7, 8, 9, 17, 40, 41, 42, 43, 100, 2000}) {
        std::vector<Values> inputs(9, Values(n));
        for (int i = 0; i < n; ++i) {
            const auto r = static_cast<int>(random() % (1u << 30));
            const int shapes[] = {r, r % 3, r % 10 ? 8 : 2, 1, i, n - i, std::min(i, n - i), i % 7};
            for (int s = 0; s < 8; ++s) inputs[s][i] = shapes[s];
            inputs[8][i] = r % 3 == 0 ? std::nan("") : r % 5;
        }
        for (const Values& values : inputs) {
            SCOPED_TRACE(::testing::PrintToString(values));
            expect_sorted(values);
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

TEST(KeyedSort, OrdersTiesAsThePlainIndexSortDoes) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 20 == 0 ? 20000 : 900));
        // From nearly all keys different to nearly all the same, and from sorted to shuffled.
        const auto values = seed % 4 == 0 ? 1 + random() % 3 : 1 + random() % (3 * n);
        Values key;
        std::vector<KeyedIndex> items;
        for (int i = 0; i < n; ++i) {
            key.push_back(seed % 7 == 0 ? i / 5 : static_cast<double>(random() % values));
            items.push_back({key[i], i + 1});
        }
        const Order index = index_of<double, Quickindex>(key);
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
