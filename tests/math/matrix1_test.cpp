#include "math/matrix1.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace {

using Matrix = math::matrix1<double>;
using Rows = std::vector<std::vector<double>>;

Matrix matrix_of(const Rows& rows) {
    Matrix result(rows.size(), rows.empty() ? 0 : rows[0].size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) result(i, j) = rows[i][j];
    }
    return result;
}

Rows rows_of(const Matrix& m) {
    Rows rows(m.RowNo(), std::vector<double>(m.ColNo()));
    for (std::size_t i = 0; i < m.RowNo(); ++i) {
        for (std::size_t j = 0; j < m.ColNo(); ++j) rows[i][j] = m(i, j);
    }
    return rows;
}

TEST(Matrix1, CopiesShareUntilOneIsWritten) {
    Matrix a = matrix_of({{1, 2}, {3, 4}});
    Matrix b = a;
    b *= 2.0;
    EXPECT_EQ(rows_of(a), (Rows{{1, 2}, {3, 4}}));
    EXPECT_EQ(rows_of(b), (Rows{{2, 4}, {6, 8}}));
    b = std::move(a);
    EXPECT_EQ(rows_of(a), rows_of(b)) << "a moved-from handle is a copy";
}

TEST(Matrix1, ArithmeticKeepsItsOrder) {
    const Matrix a = matrix_of({{1, 2, 3}, {4, 5, 6}});
    const Matrix b = matrix_of({{1, 0}, {0, 2}, {-1, 1}});
    Matrix pivoted = matrix_of({{1, 5}, {-4, 2}, {4, 2}});
    EXPECT_EQ(rows_of(2.0 * a - a), rows_of(a));
    EXPECT_EQ(rows_of(a * b), (Rows{{-2, 7}, {-2, 16}}));
    EXPECT_EQ(rows_of(~a), (Rows{{1, 4}, {2, 5}, {3, 6}}));
    EXPECT_EQ(rows_of(Matrix(2, 0) * Matrix(0, 1)), (Rows{{0}, {0}}));
    // 1e16 + 1 rounds to 1e16: any other order of the additions gives 1 or 2.
    const Matrix ones = matrix_of({{1}, {1}, {1}, {1}});
    EXPECT_EQ(rows_of(matrix_of({{1e16, 1.0, -1e16, 1.0}}) * ones), (Rows{{1.0}}));
    EXPECT_TRUE(std::signbit((-matrix_of({{0.0}}))(0, 0)));
    EXPECT_EQ(rows_of((~pivoted).Unit()), (Rows{{1, 0}, {0, 1}}));
    EXPECT_TRUE(pivoted.pivot(0) == 1 && pivoted.pivot(0) == 0) << "a tie stays";
    EXPECT_EQ(rows_of(pivoted), (Rows{{-4, 2}, {1, 5}, {4, 2}}));
}

// The singular ones by hand: rows exchanged, the upper divided by 2 and subtracted; then column 1
// has no pivot.
TEST(Matrix1, InversesAndErrors) {
    const std::pair<Rows, Rows> cases[] = {
        {{}, {}},
        {{{0, 2, 0}, {0, 0, 4}, {8, 0, 0}}, {{0, 0, 0.125}, {0.5, 0, 0}, {0, 0.25, 0}}},
        {{{0}}, {{1}}},
        {{{0, 1}, {0, 2}}, {{1, 0}, {0, 1}}}};
    for (const auto& [matrix, inverse] : cases) EXPECT_EQ(rows_of(!matrix_of(matrix)), inverse);
    Matrix work = matrix_of({{1, 2}, {2, 4}});
    EXPECT_EQ(rows_of(work.Inv()), (Rows{{0, 0.5}, {1, -0.5}}));
    EXPECT_TRUE(work.IsSingular() && rows_of(work) == (Rows{{1, 2}, {0, 0}}));
    work = matrix_of({{3, 5}, {0, 0}});
    work.Inv();
    EXPECT_EQ(work(0, 1), 5.0 / 3) << "divided, which 5 * (1.0 / 3) is not";
    EXPECT_THROW(Matrix(2, 3)(2, 0), math::matrix1_error);
    EXPECT_THROW(Matrix(2, 3) * Matrix(2, 3), math::matrix1_error);
    std::mt19937 random(30);
    Matrix tall(35, 30);
    for (std::size_t i = 0; i < 35 * 30; ++i) {
        tall(i / 30, i % 30) = static_cast<double>(random()) / 4294967296.0 - 0.5;
    }
    const Matrix square = ~tall * tall, product = !square * square;
    for (std::size_t i = 0; i < 30 * 30; ++i) {
        EXPECT_NEAR(product(i / 30, i % 30), i / 30 == i % 30 ? 1.0 : 0.0, 1e-8) << i;
    }
}

}  // namespace
