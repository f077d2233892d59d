#include "numeric/combinations.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

namespace vort {
namespace {

TEST(Choose, HasItsOwnValuesOutsideOfPascalsTriangle) {
    const int cases[][3] = {{5, 2, 10}, {33, 16, 1166803110},   {34, 16, INT_MAX}, {0, 0, 1},
                            {5, 7, 1},  {65536, 2, 2147450880}, {60, 59, 60},      {60, 60, 1},
                            {4, -1, 1}, {65537, 2, INT_MAX}};
    for (const auto& [i, j, expected] : cases) EXPECT_EQ(choose(i, j), expected) << i << ' ' << j;
}

// One cell more on both sides than may be written.
std::vector<int> decoded(int c, int m, int k) {
    std::vector<int> out(k + 2, -7);
    sortchoose1(c, m, k, out.data());
    EXPECT_TRUE(out.front() == -7 && out.back() == -7);
    return {out.begin() + 1, out.end() - 1};
}

TEST(SortChoose, NumbersTheSetsInLexicographicOrder) {
    int pairs = 0, triples = 0;
    for (int x = 1; x <= 9; ++x) {
        for (int y = x + 1; y <= 9; ++y) {
            EXPECT_EQ(decoded(++pairs, 9, 2), (std::vector{x, y}));
            for (int z = y + 1; z <= 9; ++z) {
                EXPECT_EQ(decoded(++triples, 9, 3), (std::vector{x, y, z}));
            }
        }
    }
    EXPECT_EQ(decoded(37, 9, 2), (std::vector{0, 0})) << "one past the last";
    EXPECT_EQ(decoded(1, 1, 2), (std::vector{0, 0})) << "none";
    EXPECT_EQ(decoded(INT_MIN, 9, 2), (std::vector{1, 2}));
    EXPECT_EQ(decoded(1799969999, 60000, 2), (std::vector{59998, 60000})) << "the last but one";
}

}  // namespace
}  // namespace vort
