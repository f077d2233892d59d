#include "numeric/index_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace vort {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr int kGuard = -77;

// A random whole number in 0 .. count - 1.
double below(unsigned count, std::mt19937& random) {
    return static_cast<double>(random() % count);
}

struct Shape {
    std::string name;
    std::function<double(int i, int n, std::mt19937& random)> value;
};

const std::vector<Shape>& shapes() {
    static const std::vector<Shape> all = {
        {"distinct", [](int, int, std::mt19937& r) { return below(1u << 30, r) / (1 << 30); }},
        {"three values", [](int, int, std::mt19937& r) { return below(3, r) * 0.5; }},
        {"mostly ones", [](int, int, std::mt19937& r) { return r() % 10 ? 1.0 : 0.25; }},
        {"all equal", [](int, int, std::mt19937&) { return 1.0; }},
        {"ascending", [](int i, int, std::mt19937&) { return i * 1.0; }},
        {"descending", [](int i, int n, std::mt19937&) { return n - i * 1.0; }},
        {"organ pipe", [](int i, int n, std::mt19937&) { return std::min(i, n - i) * 1.0; }},
        {"saw", [](int i, int, std::mt19937&) { return i % 7 * 1.0; }},
    };
    return all;
}

std::vector<double> values_of(const Shape& shape, int n, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<double> values(n);
    for (int i = 0; i < n; ++i) values[i] = shape.value(i, n, random);
    return values;
}

const std::vector<int>& sizes() {
    static const std::vector<int> all = [] {
        std::vector<int> sizes(41);
        std::iota(sizes.begin(), sizes.end(), 0);
        sizes.insert(sizes.end(), {100, 1000, 20000});
        return sizes;
    }();
    return all;
}

// The values moved up to elements 1 .. n, and no element behind them: whatever reads further is
// caught by the address sanitizer.
template <typename T = double>
std::vector<T> one_based(const std::vector<double>& values) {
    std::vector<T> result(1, static_cast<T>(kGuard));
    for (const double value : values) result.push_back(static_cast<T>(value));
    return result;
}

std::vector<int> index_of(const std::vector<double>& values) {
    std::vector<double> a = one_based(values);
    std::vector<int> index(a.size(), kGuard);
    Quickindex(a.data(), index.data(), static_cast<int>(values.size()));
    EXPECT_EQ(a[0], kGuard);
    EXPECT_EQ(index[0], kGuard);
    return {index.begin() + 1, index.end()};
}

bool is_permutation_of_range(std::vector<int> index, int first) {
    std::sort(index.begin(), index.end());
    for (const int element : index) {
        if (element != first++) return false;
    }
    return true;
}

TEST(Quickindex, OrdersEveryShapeAndLosesNoElement) {
    unsigned seed = 1;
    for (const Shape& shape : shapes()) {
        for (const int n : sizes()) {
            SCOPED_TRACE(shape.name + " n=" + std::to_string(n) + " seed=" + std::to_string(seed));
            const std::vector<double> values = values_of(shape, n, seed++);
            const std::vector<int> index = index_of(values);
            EXPECT_TRUE(is_permutation_of_range(index, 1));
            EXPECT_TRUE(std::is_sorted(index.begin(), index.end(), [&](int i, int j) {
                return values[i - 1] < values[j - 1];
            }));
        }
    }
}

// The partition traced by hand. Eight items are the fewest that are partitioned; seven equal ones
// keep their order.
TEST(Quickindex, LeavesTiesWhereThePartitionPutsThem) {
    struct Case {
        std::vector<double> values;
        std::vector<int> index;
    };
    const std::vector<Case> cases = {
        {{5}, {1}},
        {{2, 1}, {2, 1}},
        {{1, 1, 1, 1, 1, 1, 1}, {1, 2, 3, 4, 5, 6, 7}},
        {{2, 1, 2, 1, 2, 1, 2}, {2, 4, 6, 1, 3, 5, 7}},
        {{1, 1, 1, 1, 1, 1, 1, 1}, {1, 6, 7, 4, 5, 2, 3, 8}},
        {{2, 1, 2, 1, 2, 1, 2, 1}, {8, 6, 4, 2, 5, 3, 7, 1}},
    };
    for (const Case& c : cases) EXPECT_EQ(index_of(c.values), c.index);
}

TEST(Quickindex, SameOrderForTheWholeFamily) {
    unsigned seed = 1000;
    for (const Shape& shape : shapes()) {
        for (const int n : {0, 1, 7, 8, 9, 50, 3000}) {
            SCOPED_TRACE(shape.name + " n=" + std::to_string(n) + " seed=" + std::to_string(seed));
            std::vector<double> values = values_of(shape, n, seed++);
            for (double& value : values) value = static_cast<int>(value * 8.0);
            const std::vector<int> index = index_of(values);

            std::vector<int> whole = one_based<int>(values);
            std::vector<int> whole_index(whole.size(), kGuard);
            iQuickindex(whole.data(), whole_index.data(), n);
            EXPECT_TRUE(std::equal(index.begin(), index.end(), whole_index.begin() + 1));

            std::vector<int> zero_based(values.size());
            Quickindex1(values.data(), zero_based.data(), n);
            for (int i = 0; i < n; ++i) ASSERT_EQ(zero_based[i], index[i] - 1);
        }
    }
}

TEST(Quicksort, SortsValuesInPlace) {
    unsigned seed = 2000;
    for (const Shape& shape : shapes()) {
        for (const int n : sizes()) {
            SCOPED_TRACE(shape.name + " n=" + std::to_string(n) + " seed=" + std::to_string(seed));
            const std::vector<double> values = values_of(shape, n, seed++);
            std::vector<double> a = one_based(values);
            std::vector<double> expected = a;
            std::sort(expected.begin() + 1, expected.end());
            Quicksort(a.data(), n);
            EXPECT_EQ(a, expected);

            std::vector<int> whole = one_based<int>(values);
            std::vector<int> whole_expected = whole;
            std::sort(whole_expected.begin() + 1, whole_expected.end());
            iQuicksort(whole.data(), n);
            EXPECT_EQ(whole, whole_expected);
        }
    }
}

// An order has no meaning here; every element must still be there once.
TEST(Quickindex, KeepsWithinItsArraysForNan) {
    std::mt19937 random(3000);
    for (int round = 0; round < 3000; ++round) {
        const int n = static_cast<int>(random() % 60);
        const unsigned one_in = 1 + random() % 4;
        std::vector<double> values(n);
        for (double& value : values) value = random() % one_in == 0 ? kNan : below(5, random);
        EXPECT_TRUE(is_permutation_of_range(index_of(values), 1)) << "seed 3000 round " << round;
    }
}

}  // namespace
}  // namespace vort
