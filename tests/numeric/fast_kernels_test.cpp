// The fast kernels against the plain forms that they stand for, bit for bit.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "numeric/chi_square_lanes.h"
#include "numeric/distributions.h"
#include "numeric/draw_positions.h"
#include "numeric/index_sort.h"
#include "numeric/keyed_sort.h"
#include "numeric/label_lanes.h"
#include "numeric/random.h"

namespace vort {
namespace {

TEST(KeyedSort, OrdersTiesAsThePlainIndexSortDoes) {
    for (unsigned seed = 1; seed <= 600; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const int n = 1 + static_cast<int>(random() % (seed % 20 == 0 ? 20000 : 900));
        // From nearly all keys different to nearly all the same, and from sorted to shuffled.
        const auto values = seed % 4 == 0 ? 1 + random() % 3 : 1 + random() % (3 * n);
        std::vector<double> key(static_cast<std::size_t>(n) + 1);
        for (int i = 1; i <= n; ++i) {
            key[i] = seed % 7 == 0
                         ? i / 5
                         : static_cast<double>(random() % values) / static_cast<double>(values);
        }
        std::vector<int> index(key.size());
        Quickindex(key.data(), index.data(), n);
        std::vector<KeyedIndex> items;
        for (int i = 1; i <= n; ++i) items.push_back({key[i], i});
        sort_keyed(items);
        for (int i = 1; i <= n; ++i) ASSERT_EQ(items[i - 1].index, index[i]) << "at " << i;
    }
}

struct Generator {
    int x, y, z;
    static Generator now() { return {RX, RY, RZ}; }
    void set() const { RX = x, RY = y, RZ = z; }
    bool operator==(const Generator&) const = default;
};

TEST(DrawPositions, AreThoseOfSingleDraws) {
    // The first state, states in the middle of a cycle and one step before its end, and states that
    // are on no cycle.
    const Generator starts[] = {{1, 3, 5}, {12345, 30306, 777}, {177, 3, 5},
                                {0, 3, 5}, {1, 1, 5},           {1, 10103, 5}};
    for (const Generator& start : starts) {
        for (const int n : {0, 1, 2, 63, 64, 65, 1000, 70000}) {
            SCOPED_TRACE(::testing::Message() << start.x << ' ' << start.y << ' ' << n);
            std::vector<int> fast(static_cast<std::size_t>(n));
            start.set();
            draw_positions(n, fast.data());
            const Generator after = Generator::now();
            start.set();
            for (int c = 0; c < n; ++c) {
                ASSERT_EQ(fast[c], static_cast<int>((n - c) * rand1())) << c;
            }
            EXPECT_TRUE(after == Generator::now());
        }
    }
    init_rand1();
}

TEST(LabelLanes, DrawTheLabelsThatAPoolGives) {
    const double value[2] = {-0.25, 0.75};
    for (unsigned seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::size_t n = seed <= 70 ? seed : 1 + random() % 3000;
        std::vector<unsigned char> labels(n);
        for (auto& label : labels) label = random() % (1 + seed % 3) == 0 ? 1 : 0;
        LabelLanes lanes(labels);
        for (int round = 0; round < 2; ++round) {
            std::vector<std::vector<unsigned char>> pool(kLanes, labels);
            lanes.refill();
            for (std::size_t left = n; left > 0; --left) {
                LabelLanes::Positions position{};
                double expected[kLanes];
                for (int l = 0; l < kLanes; ++l) {
                    const std::size_t k = random() % left;
                    position[l] = static_cast<std::int16_t>(k);
                    expected[l] = value[pool[l][k]];
                    pool[l].erase(pool[l].begin() + static_cast<std::ptrdiff_t>(k));
                }
                double drawn[kLanes];
                lanes.take(position, value, drawn);
                for (int l = 0; l < kLanes; ++l) ASSERT_EQ(drawn[l], expected[l]);
            }
        }
    }
}

TEST(ChiSquareQueue, GivesTheUpperTailsOfThePlainForm) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> exponent(-12, 8);
    for (const Instructions instructions : {Instructions::kPortable, best_instructions()}) {
        ChiSquareQueue queue(instructions);
        for (int size = 0; size < 40; ++size) {
            std::vector<std::pair<int, double>> asked;
            for (int k = 0; k < size; ++k) {
                const double statistic = k % 10 == 0 ? 0 : std::exp2(exponent(random));
                asked.emplace_back(1 + k % 2, statistic);
                queue.add(1 + k % 2, statistic, k);
            }
            // Around the point where the series hands over to the continued fraction.
            for (const double statistic : {2.9999999999999996, 3.0, 3.0000000000000004, 4.0}) {
                asked.emplace_back(1, statistic);
                queue.add(1, statistic, static_cast<int>(asked.size()) - 1);
            }
            const auto& results = queue.take();
            ASSERT_EQ(results.size(), asked.size());
            for (const auto& [tag, pvalue] : results) {
                const auto [df, statistic] = asked[tag];
                EXPECT_EQ(pvalue, 1 - pchisq(df, statistic)) << df << ' ' << statistic;
            }
        }
    }
}

}  // namespace
}  // namespace vort
