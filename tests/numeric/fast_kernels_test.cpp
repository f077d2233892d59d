// The fast kernels against the plain forms that they stand for, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "numeric/chi_square_lanes.h"
#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"

namespace vort {
namespace {

// All that this processor and the build have.
std::vector<Instructions> instruction_sets() {
    std::vector<Instructions> sets;
    for (const auto set : {Instructions::kPortable, Instructions::kWide, Instructions::kWidest}) {
        if (set <= best_instructions()) sets.push_back(set);
    }
    return sets;
}

TEST(KeyedSort, OrdersTiesAsThePlainIndexSortDoes) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 20 == 0 ? 20000 : 900));
        // From nearly all keys different to nearly all the same, and from sorted to shuffled.
        const auto values = seed % 4 == 0 ? 1 + random() % 3 : 1 + random() % (3 * n);
        std::vector<double> key(static_cast<std::size_t>(n) + 1);
        std::vector<KeyedIndex> items;
        for (int i = 1; i <= n; ++i) {
            key[i] = seed % 7 == 0 ? i / 5 : static_cast<double>(random() % values);
            items.push_back({key[i], i});
        }
        std::vector<int> index(key.size());
        Quickindex(key.data(), index.data(), n);
        for (const Instructions instructions : instruction_sets()) {
            std::vector<KeyedIndex> sorted = items;
            sort_keyed(sorted, instructions);
            for (int i = 1; i <= n; ++i) ASSERT_EQ(sorted[i - 1].index, index[i]) << "at " << i;
        }
    }
}

TEST(ChiSquareQueue, GivesTheUpperTailsOfThePlainForm) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> exponent(-12, 8);
    for (const Instructions instructions : instruction_sets()) {
        ChiSquareQueue queue(instructions, 100);
        for (int size = 0; size < 40; ++size) {
            // Around the point where the series hands over to the continued fraction, and anywhere.
            std::vector<std::pair<int, double>> asked = {
                {1, 2.9999999999999996}, {1, 3.0}, {1, 3.0000000000000004}, {1, 4.0}};
            for (int k = 0; k < size; ++k) {
                asked.emplace_back(1 + k % 2, k % 10 == 0 ? 0 : std::exp2(exponent(random)));
            }
            int next = 0;
            for (const auto& [df, statistic] : asked) queue.add(df, statistic, next++);
            std::size_t received = 0;
            queue.take([&](int tag, double pvalue) {
                const auto [df, statistic] = asked[tag];
                EXPECT_EQ(pvalue, 1 - pchisq(df, statistic)) << df << ' ' << statistic;
                ++received;
            });
            EXPECT_EQ(received, asked.size());
        }
    }
}

}  // namespace
}  // namespace vort
