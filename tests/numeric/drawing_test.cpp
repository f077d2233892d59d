// The drawing of many numbers, orders and labels against one draw at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "numeric/clustered_labels.h"
#include "numeric/generator.h"
#include "numeric/label_runs.h"
#include "numeric/plain_draws.h"
#include "numeric/random_order.h"
#include "support/instruction_sets.h"
#include "support/random_clusters.h"

namespace vort {
namespace {

using vort::testing::instruction_sets;
using vort::testing::plain_clusters;
using vort::testing::plain_order;
using vort::testing::PlainGenerator;
using vort::testing::random_cluster_labels;

constexpr int kMost = std::numeric_limits<int>::max();

// The first state, states in the middle and at the end of a cycle, and states that are on none.
const PlainGenerator kStates[] = {
    {1, 3, 5}, {12345, 30306, 777}, {177, 3, 5},     {1, 1, 5},
    {0, 0, 0}, {1, 10103, 5},       {-1, -3, 30324}, {kMost, -kMost, kMost}};

TEST(Generator, DrawsAndSkipsAsThePlainFormDoes) {
    for (const PlainGenerator& state : kStates) {
        SCOPED_TRACE(::testing::Message() << state.x << ' ' << state.y << ' ' << state.z);
        const Generator start(static_cast<int>(state.x), static_cast<int>(state.y),
                              static_cast<int>(state.z));
        Generator single = start;
        PlainGenerator plain = state;
        std::uint64_t drawn = 0;
        for (const std::uint64_t until : {1, 2, 63, 1023, 1024, 30268, 100000}) {
            for (; drawn < until; ++drawn) ASSERT_EQ(single.next(), plain.next()) << drawn;
            Generator ahead = start;
            ahead.skip(until);
            ASSERT_TRUE(ahead == single && plain == single) << until;
        }
        single.skip(30268ULL * 20204 * 30322 * 600000);  // a multiple of every part's period
        EXPECT_EQ(plain, single);
    }
}

TEST(Generator, PositionsAreThoseOfSingleDraws) {
    for (const PlainGenerator& state : kStates) {
        Generator generator(static_cast<int>(state.x), static_cast<int>(state.y),
                            static_cast<int>(state.z));
        PlainGenerator plain = state;
        int left = kMost;
        for (const int n : {0, 1, 2, 63, 65, 1024, 1025, 70000}) {
            SCOPED_TRACE(::testing::Message() << state.x << ' ' << state.y << ' ' << n);
            std::vector<int> out(static_cast<std::size_t>(n) + 1, -7);
            generator.positions(n, left, out.data());
            for (int c = 0; c < n; ++c) {
                ASSERT_EQ(out[c], static_cast<int>((left - c) * plain.next())) << c;
            }
            EXPECT_EQ(out[n], -7);
            left -= n;
        }
        EXPECT_EQ(plain, generator);
    }
}

TEST(RandomOrder, IsDrawnAsFromAListWhoseGapsAreClosed) {
    for (const Instructions instructions : instruction_sets()) {
        RandomOrder space(instructions);
        PlainGenerator plain;
        Generator generator;
        for (const int n : {70000, 0, 1, 2, 63, 64, 65, 1000, 1024, 1025, 16384, 40000, 300000}) {
            std::vector<int> order(static_cast<std::size_t>(n));
            space.draw(generator, order);
            ASSERT_EQ(order, plain_order(plain, n)) << n;
        }
        EXPECT_EQ(plain, generator);
        generator = {-1, -3, -5};  // numbers below 0 take the first item
        std::vector<int> order(100);
        space.draw(generator, order);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()) && order.back() == 99);
    }
}

// Labels 1, 0, 1, 0, ... in runs of random lengths, some of them empty.
std::vector<unsigned char> random_runs(std::mt19937& random, std::size_t n, unsigned runs) {
    std::vector<unsigned char> labels;
    for (unsigned run = 0; run < runs; ++run) {
        const std::size_t most = n - labels.size();
        const std::size_t size = run + 1 == runs     ? most
                                 : random() % 5 == 0 ? 0
                                                     : random() % (most + 1);
        labels.insert(labels.end(), size, run % 2 == 0 ? 1 : 0);
    }
    return labels;
}

// What draw() is to give.
std::vector<std::uint64_t> plain_planes(PlainGenerator generator, int orders,
                                        const std::vector<unsigned char>& labels) {
    const std::size_t words = (labels.size() + 63) / 64;
    std::vector<std::uint64_t> planes(static_cast<std::size_t>(orders) * words);
    for (int l = 0; l < orders; ++l) {
        const std::vector<int> order = plain_order(generator, static_cast<int>(labels.size()));
        for (std::size_t c = 0; c < order.size(); ++c) {
            planes[l * words + c / 64] |= std::uint64_t{labels[order[c]]} << (c % 64);
        }
    }
    return planes;
}

void expect_plain_labels(std::mt19937& random, const PlainGenerator& state, std::size_t n) {
    const auto runs = static_cast<unsigned>(1 + random() % (n % 3 == 0 ? 9 : 4));
    const std::vector<unsigned char> labels = random_runs(random, n, runs);
    const int orders = 1 + static_cast<int>(random() % LabelRuns::kOrdersAtOnce);
    const std::vector<std::uint64_t> expected = plain_planes(state, orders, labels);
    for (const Instructions instructions : instruction_sets()) {
        const LabelRuns drawn(labels, instructions);
        EXPECT_TRUE(drawn.few_runs() || runs > LabelRuns::kMostRuns);
        std::vector<std::uint64_t> planes(expected.size() + 1, 7);
        drawn.draw(
            {static_cast<int>(state.x), static_cast<int>(state.y), static_cast<int>(state.z)},
            Generator::Skip(n), orders, planes.data());
        EXPECT_EQ(planes.back(), 7U);
        planes.pop_back();
        ASSERT_EQ(planes, expected)
            << orders << " orders, " << runs << " runs, set " << static_cast<int>(instructions);
    }
}

TEST(LabelRuns, AreTheLabelsOfPlainOrders) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        std::mt19937 random(seed);
        const std::size_t n = seed <= 70    ? seed
                              : seed <= 140 ? 1 + random() % 3000
                                            : 32000 + random() % 38000;
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << n << " items");
        PlainGenerator state{1 + seed, 3 * seed, 7 * seed};
        if (seed % 10 == 0) state = kStates[3];
        expect_plain_labels(random, state, n);
    }
}

void expect_clustered_labels(std::mt19937& random, const PlainGenerator& state, std::size_t n) {
    const std::vector<unsigned char> labels = random_runs(random, n, 4);
    const std::vector<int> cluster = random_cluster_labels(random, static_cast<int>(n));
    const int orders = 1 + static_cast<int>(random() % ClusteredLabels::kOrdersAtOnce);
    std::vector<unsigned char> expected;  // a byte a draw
    PlainGenerator plain = state;
    for (int l = 0; l < orders; ++l) {
        for (const std::vector<int>& members : plain_clusters(cluster)) {
            for (const int k : plain_order(plain, static_cast<int>(members.size()))) {
                expected.push_back(labels[members[k]]);
            }
        }
    }
    for (const Instructions instructions : instruction_sets()) {
        const ClusteredLabels drawn(labels, Clusters(cluster), instructions);
        const std::size_t stride = drawn.plane_words() + 2;
        std::vector<std::uint64_t> planes(static_cast<std::size_t>(orders) * stride, 7);
        drawn.draw(
            {static_cast<int>(state.x), static_cast<int>(state.y), static_cast<int>(state.z)},
            orders, planes.data(), stride);
        for (std::size_t l = 0; l < static_cast<std::size_t>(orders); ++l) {
            for (std::size_t d = 0; d < 64 * drawn.plane_words(); ++d) {
                const auto bit = planes[l * stride + d / 64] >> d % 64 & 1;
                ASSERT_EQ(bit, d < n ? expected[l * n + d] : 0) << "order " << l << ", draw " << d;
            }
            ASSERT_EQ(planes[(l + 1) * stride - 1], 7U);
        }
    }
}

TEST(ClusteredLabels, AreTheLabelsOfPlainOrdersOfEachCluster) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        std::mt19937 random(seed);
        const std::size_t n = seed <= 70 ? seed : 1 + random() % 3000;
        SCOPED_TRACE(::testing::Message() << "seed " << seed << ", " << n << " items");
        expect_clustered_labels(random, seed % 10 == 0 ? kStates[3] : PlainGenerator{1, seed, 5},
                                n);
    }
}

}  // namespace
}  // namespace vort
