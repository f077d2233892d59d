#include "math/matrix1.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
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
    const double* storage = &a(0, 0);
    Matrix b = a;
    b *= 2.0;
    EXPECT_EQ(rows_of(a), (Rows{{1, 2}, {3, 4}}));
    EXPECT_EQ(rows_of(b), (Rows{{2, 4}, {6, 8}}));
    EXPECT_EQ(&a(0, 0), storage) << "the last handle of a storage needs no copy";
    b = std::move(a);
    EXPECT_EQ(rows_of(a), rows_of(b)) << "a moved-from handle is a copy";
}

TEST(Matrix1, Arithmetic) {
    const Matrix a = matrix_of({{1, 2, 3}, {4, 5, 6}});
    const Matrix b = matrix_of({{1, 0}, {0, 2}, {-1, 1}});
    Matrix sum = a, square = matrix_of({{1, 1}, {0, 1}});
    sum += a;
    square *= square;
    const std::vector<std::pair<Rows, Rows>> cases = {
        {rows_of(sum), rows_of(2.0 * a)},
        {rows_of(sum - a), rows_of(a)},
        {rows_of(a * b), {{-2, 7}, {-2, 16}}},
        {rows_of(-a), {{-1, -2, -3}, {-4, -5, -6}}},
        {rows_of(~a), {{1, 4}, {2, 5}, {3, 6}}},
        {rows_of(square), {{1, 2}, {0, 1}}},
        {rows_of(Matrix(2, 0) * Matrix(0, 3)), {{0, 0, 0}, {0, 0, 0}}},
        // 1e16 + 1 rounds to 1e16: any other order of the additions gives 1 or 2.
        {rows_of(matrix_of({{1e16, 1.0, -1e16, 1.0}}) * matrix_of({{1}, {1}, {1}, {1}})), {{1.0}}},
        {rows_of(matrix_of({{1.0, 1e16, -1e16}}) * matrix_of({{1}, {1}, {1}})), {{0.0}}}};
    for (std::size_t c = 0; c < cases.size(); ++c) EXPECT_EQ(cases[c].first, cases[c].second) << c;
    EXPECT_TRUE(std::signbit((-matrix_of({{0.0}}))(0, 0)));
}

TEST(Matrix1, UnitShrinksAndPivotTakesTheFirstOfTheLargest) {
    Matrix m = matrix_of({{1, 5}, {-4, 2}, {4, 2}});
    EXPECT_EQ(rows_of((~m).Unit()), (Rows{{1, 0}, {0, 1}}));
    EXPECT_EQ(m.pivot(0), 1);
    EXPECT_EQ(m.pivot(0), 0) << "a tie stays";
    EXPECT_EQ(rows_of(m), (Rows{{-4, 2}, {1, 5}, {4, 2}}));
    EXPECT_EQ(matrix_of({{0, 1}, {-0.0, 2}}).pivot(0), -1);
    EXPECT_EQ(m.pivot(2), -1) << "no such column";
}

// The singular ones by hand: rows exchanged, the upper divided by 2 and subtracted; then column 1
// has no pivot.
TEST(Matrix1, InverseOfSmallAndSingularMatrices) {
    const std::pair<Rows, Rows> cases[] = {
        {{}, {}},
        {{{4}}, {{0.25}}},
        {{{0, 2, 0}, {0, 0, 4}, {8, 0, 0}}, {{0, 0, 0.125}, {0.5, 0, 0}, {0, 0.25, 0}}},
        {{{0}}, {{1}}},
        {{{0, 1}, {0, 2}}, {{1, 0}, {0, 1}}}};
    for (const auto& [matrix, inverse] : cases) EXPECT_EQ(rows_of(!matrix_of(matrix)), inverse);
    Matrix work = matrix_of({{1, 2}, {2, 4}});
    EXPECT_EQ(rows_of(work.Inv()), (Rows{{0, 0.5}, {1, -0.5}}));
    EXPECT_TRUE(work.IsSingular());
    EXPECT_EQ(rows_of(work), (Rows{{1, 2}, {0, 0}}));
    work = matrix_of({{3, 5}, {0, 0}});
    work.Inv();
    EXPECT_EQ(work(0, 1), 5.0 / 3) << "divided, which 5 * (1.0 / 3) is not";
    work(1, 1) = 1;
    work.Inv();
    EXPECT_FALSE(work.IsSingular());
}

TEST(Matrix1, InverseTimesTheMatrixIsUnit) {
    for (std::size_t n : {1u, 3u, 30u}) {
        std::mt19937 random(static_cast<unsigned>(n));
        Matrix tall(n + 5, n);
        for (std::size_t i = 0; i < n * (n + 5); ++i) {
            tall(i / n, i % n) = static_cast<double>(random()) / 4294967296.0 - 0.5;
        }
        const Matrix square = ~tall * tall;
        const Matrix product = !square * square;
        for (std::size_t i = 0; i < n * n; ++i) {
            EXPECT_NEAR(product(i / n, i % n), i / n == i % n ? 1.0 : 0.0, 1e-8) << n << ": " << i;
        }
    }
}

TEST(Matrix1, ErrorsSayWhatWasWrong) {
    const Matrix constant(1, 1);
    const std::string sizes = " : Inconsistent matrix1 sizes in ";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[] { Matrix(2, 3)(2, 0); }, "(): Index out of range!"},
        {[&] { constant(0, 1); }, "(): Index out of range!"},
        {[] { Matrix(2, 3) += Matrix(3, 2); }, "+=" + sizes + "addition!"},
        {[] { Matrix(2, 3) -= Matrix(2, 2); }, "-=" + sizes + "subtraction!"},
        {[] { Matrix(2, 3) * Matrix(2, 3); }, "*=" + sizes + "multiplication!"},
        {[] { !Matrix(2, 3); }, "!: Inversion of a non-square matrix1"}};
    for (const auto& [act, text] : cases) {
        EXPECT_THAT(act,
                    ::testing::ThrowsMessage<math::matrix1_error>("matrix1T::operator" + text));
    }
}

}  // namespace
