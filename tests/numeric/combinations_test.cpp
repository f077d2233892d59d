#include "numeric/combinations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

namespace vort {
namespace {

TEST(Choose, AgreesWithPascalsTriangleAndHasItsOwnValuesOutside) {
    std::vector<std::vector<long>> row(61, std::vector<long>(61, 0));
    for (int i = 0; i <= 60; ++i) {
        row[i][0] = 1;
        for (int j = 1; j <= i; ++j) row[i][j] = row[i - 1][j - 1] + row[i - 1][j];
        for (int j = 0; j <= i; ++j) {
            EXPECT_EQ(choose(i, j), std::min<long>(row[i][j], INT_MAX)) << i << " over " << j;
        }
    }
    const int outside[][3] = {{5, 7, 1}, {4, -1, 1}, {65536, 2, 2147450880}, {65537, 2, INT_MAX}};
    for (const auto& [i, j, expected] : outside) EXPECT_EQ(choose(i, j), expected) << i << ' ' << j;
}

// One cell more on both sides than may be written.
std::vector<int> decoded(int c, int m, int k) {
    std::vector<int> out(k + 2, -7);
    sortchoose1(c, m, k, out.data());
    EXPECT_TRUE(out.front() == -7 && out.back() == -7);
    return {out.begin() + 1, out.end() - 1};
}

TEST(SortChoose, NumbersTheSetsInLexicographicOrder) {
    for (int m = 1; m <= 9; ++m) {
        for (int k = 1; k <= m; ++k) {
            std::string members = std::string(k, '1') + std::string(m - k, '0');
            int c = 1;
            do {
                std::vector<int> set;
                for (int x = 1; x <= m; ++x) {
                    if (members[x - 1] == '1') set.push_back(x);
                }
                EXPECT_EQ(decoded(c++, m, k), set) << "m=" << m << " k=" << k << " c=" << c - 1;
            } while (std::prev_permutation(members.begin(), members.end()));
            EXPECT_EQ(decoded(c, m, k), std::vector<int>(k, 0)) << "one past the last";
            for (const int low : {0, INT_MIN}) EXPECT_EQ(decoded(low, m, k), decoded(1, m, k));
        }
    }
    for (const int m : {1, 0, -3}) EXPECT_EQ(decoded(1, m, 2), (std::vector{0, 0}));
    EXPECT_EQ(decoded(1799969999, 60000, 2), (std::vector{59998, 60000}));  // the last but one
}

}  // namespace
}  // namespace vort
