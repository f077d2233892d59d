#include "numeric/combinations.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

namespace vort {
namespace {

TEST(Choose, AgreesWithPascalsTriangle) {
    std::vector<std::vector<long>> row(61, std::vector<long>(61, 0));
    for (int i = 0; i <= 60; ++i) {
        row[i][0] = 1;
        for (int j = 1; j <= i; ++j) row[i][j] = row[i - 1][j - 1] + row[i - 1][j];
        for (int j = 0; j <= i; ++j) {
            const long expected = row[i][j] > INT_MAX ? INT_MAX : row[i][j];
            EXPECT_EQ(choose(i, j), expected) << i << " over " << j;
        }
    }
}

TEST(Choose, HasItsOwnValuesOutsideTheTriangle) {
    struct Case {
        int i, j, expected;
    };
    for (const Case& c : {Case{5, 7, 1}, Case{0, 1, 1}, Case{4, -1, 1}, Case{0, 0, 1},
                          Case{-4, 2, 1}, Case{INT_MIN, INT_MAX, 1}, Case{INT_MAX, INT_MIN, 1},
                          Case{65536, 2, 2147450880}, Case{65537, 2, INT_MAX},
                          Case{INT_MAX, 1, INT_MAX}, Case{INT_MAX, INT_MAX / 2, INT_MAX}}) {
        EXPECT_EQ(choose(c.i, c.j), c.expected) << c.i << " over " << c.j;
    }
}

// One cell more on both sides than the decoder may write.
std::vector<int> decoded(int c, int m, int k) {
    std::vector<int> out(k + 2, -7);
    sortchoose1(c, m, k, out.data());
    EXPECT_EQ(out.front(), -7);
    EXPECT_EQ(out.back(), -7);
    return {out.begin() + 1, out.end() - 1};
}

// The next set in lexicographic order; false after the last.
bool advance(std::vector<int>& set, int m) {
    const int k = static_cast<int>(set.size());
    for (int p = k - 1; p >= 0; --p) {
        if (set[p] == m - k + p + 1) continue;
        ++set[p];
        for (int q = p + 1; q < k; ++q) set[q] = set[q - 1] + 1;
        return true;
    }
    return false;
}

TEST(SortChoose, NumbersTheSetsInLexicographicOrder) {
    for (int m = 1; m <= 9; ++m) {
        for (int k = 1; k <= m; ++k) {
            std::vector<int> set(k);
            for (int p = 0; p < k; ++p) set[p] = p + 1;
            int c = 1;
            do EXPECT_EQ(decoded(c++, m, k), set) << "m=" << m << " k=" << k << " c=" << c - 1;
            while (advance(set, m));
            EXPECT_EQ(decoded(c, m, k), std::vector<int>(k, 0)) << "one past the last";
        }
    }
}

TEST(SortChoose, SurvivesAnyNumber) {
    for (const int c : {0, -1, INT_MIN}) EXPECT_EQ(decoded(c, 6, 3), (std::vector{1, 2, 3}));
    EXPECT_EQ(decoded(INT_MAX, 6, 3), (std::vector{0, 0, 0}));
    EXPECT_EQ(decoded(1, 1, 2), (std::vector{0, 0}));
    EXPECT_EQ(decoded(1, 0, 1), (std::vector{0}));
    EXPECT_EQ(decoded(1, -3, 2), (std::vector{0, 0}));
}

TEST(SortChoose, InvertsTheRankOfPairsOfManyMarkers) {
    constexpr int kMarkers = 60000;
    std::mt19937 random(20);
    for (int round = 0; round < 50; ++round) {
        const int x = 1 + static_cast<int>(random() % (kMarkers - 1));
        const int y = x + 1 + static_cast<int>(random() % (kMarkers - x));
        const long before = (x - 1L) * (2L * kMarkers - x) / 2;  // pairs that start below x
        EXPECT_EQ(decoded(static_cast<int>(before + y - x), kMarkers, 2), (std::vector{x, y}));
    }
}

TEST(DecodeCombination, AsksForCountsInsideTheTableOnly) {
    for (int m = 0; m <= 7; ++m) {
        for (int k = 1; k <= 4; ++k) {
            for (int c = -1; c <= 40; ++c) {
                std::vector<int> out(k + 1);
                decode_combination(c, m, k, out.data(), [&](int a, int b) {
                    EXPECT_TRUE(0 <= b && b < k && b <= a && a < m) << a << " over " << b;
                    return choose(a, b);
                });
            }
        }
    }
}

}  // namespace
}  // namespace vort
