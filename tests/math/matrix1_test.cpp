#include "math/matrix1.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
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

Matrix random_matrix(std::size_t rows, std::size_t cols, unsigned seed) {
    std::mt19937 random(seed);
    Matrix result(rows, cols);
    for (std::size_t i = 0; i < rows; ++i) {
        for (std::size_t j = 0; j < cols; ++j)
            result(i, j) = static_cast<double>(random()) / 4294967296.0 - 0.5;
    }
    return result;
}

TEST(Matrix1, CopiesShareUntilOneIsWritten) {
    Matrix a = matrix_of({{1, 2}, {3, 4}});
    const double* storage = &a(0, 0);
    Matrix b = a;
    Matrix c(1, 1);
    c = b;
    EXPECT_EQ(std::as_const(b)(1, 1), 4.0);
    c(1, 1) = 9.0;
    b *= 2.0;
    EXPECT_EQ(rows_of(a), (Rows{{1, 2}, {3, 4}}));
    EXPECT_EQ(rows_of(b), (Rows{{2, 4}, {6, 8}}));
    EXPECT_EQ(rows_of(c), (Rows{{1, 2}, {3, 9}}));
    EXPECT_EQ(&a(0, 0), storage) << "the last handle of a storage needs no copy";
}

TEST(Matrix1, ReadingThroughACopyMakesNone) {
    Matrix a = matrix_of({{1, 2}});
    const double* storage = &a(0, 0);
    Matrix b = a;
    EXPECT_EQ(std::as_const(b)(0, 1), 2.0);
    a = Matrix(1, 1);
    EXPECT_EQ(&b(0, 0), storage);
    b.clone();
    EXPECT_NE(&b(0, 0), storage) << "clone() copies always";
    EXPECT_EQ(rows_of(b), (Rows{{1, 2}}));
}

TEST(Matrix1, AssignmentToItselfAndMovesKeepTheMatrix) {
    Matrix a = matrix_of({{5}});
    const Matrix& same = a;
    a = same;
    EXPECT_EQ(rows_of(a), (Rows{{5}}));
    const Matrix b = std::move(a);
    EXPECT_EQ(rows_of(a), rows_of(b)) << "a moved-from handle is a copy";
}

TEST(Matrix1, Arithmetic) {
    const Matrix a = matrix_of({{1, 2, 3}, {4, 5, 6}});
    const Matrix b = matrix_of({{1, 0}, {0, 2}, {-1, 1}});
    Matrix sum = a;
    sum += a;
    struct Case {
        const char* name;
        Rows result, expected;
    };
    const std::vector<Case> cases = {
        {"sum", rows_of(sum), {{2, 4, 6}, {8, 10, 12}}},
        {"difference", rows_of(sum - a), rows_of(a)},
        {"product", rows_of(a * b), {{-2, 7}, {-2, 16}}},
        {"product the other way", rows_of(b * a), {{1, 2, 3}, {8, 10, 12}, {3, 3, 3}}},
        {"scaled", rows_of(a * 0.5), {{0.5, 1, 1.5}, {2, 2.5, 3}}},
        {"scaled from the left", rows_of(0.5 * a), {{0.5, 1, 1.5}, {2, 2.5, 3}}},
        {"negated", rows_of(-a), {{-1, -2, -3}, {-4, -5, -6}}},
        {"transposed", rows_of(~a), {{1, 4}, {2, 5}, {3, 6}}},
        {"operand", rows_of(a), {{1, 2, 3}, {4, 5, 6}}},
    };
    for (const Case& c : cases) EXPECT_EQ(c.result, c.expected) << c.name;
    EXPECT_TRUE(std::signbit((-matrix_of({{0.0}}))(0, 0)));
}

TEST(Matrix1, OperandsMayBeTheSameMatrix) {
    Matrix a = matrix_of({{1, 1}, {0, 1}});
    a *= a;
    EXPECT_EQ(rows_of(a), (Rows{{1, 2}, {0, 1}}));
    a += a;
    EXPECT_EQ(rows_of(a), (Rows{{2, 4}, {0, 2}}));
    a *= a(0, 0);
    EXPECT_EQ(rows_of(a), (Rows{{4, 8}, {0, 4}}));
}

// 1e16 + 1 rounds to 1e16: any other order of the additions gives 1 or 2.
TEST(Matrix1, ProductsAddUpInIncreasingIndex) {
    const Matrix row = matrix_of({{1e16, 1.0, -1e16, 1.0}});
    const Matrix ones = matrix_of({{1, 1}, {1, 1}, {1, 1}, {1, 1}});
    EXPECT_EQ(rows_of(row * ones), (Rows{{1.0, 1.0}}));
    EXPECT_EQ(rows_of(matrix_of({{1.0, 1e16, -1e16}}) * matrix_of({{1}, {1}, {1}})), (Rows{{0.0}}));
}

TEST(Matrix1, UnitShrinksToASquare) {
    for (const auto& [rows, cols] : {std::pair{2u, 3u}, {3u, 2u}}) {
        Matrix m = random_matrix(rows, cols, 1);
        const Matrix shared = m;
        EXPECT_EQ(&m.Unit(), &m);
        EXPECT_EQ(rows_of(m), (Rows{{1, 0}, {0, 1}}));
        EXPECT_EQ(shared.RowNo() * shared.ColNo(), 6u) << "the copy keeps its size";
        EXPECT_THROW(m(2, 0), math::matrix1_error);
        EXPECT_THROW(m(0, 2), math::matrix1_error);
    }
}

TEST(Matrix1, PivotTakesTheFirstOfTheLargest) {
    struct Case {
        const char* name;
        Rows before;
        std::size_t row;
        int result;
        Rows after;
    };
    const Case cases[] = {
        {"already largest", {{3, 0}, {-2, 1}}, 0, 0, {{3, 0}, {-2, 1}}},
        {"tie stays", {{2, 0}, {-2, 1}}, 0, 0, {{2, 0}, {-2, 1}}},
        {"negative is larger", {{2, 0}, {-3, 1}}, 0, 1, {{-3, 1}, {2, 0}}},
        {"upper of two", {{1, 5}, {4, 6}, {4, 7}}, 0, 1, {{4, 6}, {1, 5}, {4, 7}}},
        {"all zero", {{0, 1}, {-0.0, 2}}, 0, -1, {{0, 1}, {-0.0, 2}}},
        {"rows above do not count", {{9, 9}, {1, 0}, {1, 2}}, 1, 2, {{9, 9}, {1, 2}, {1, 0}}},
        {"no such row", {{1, 1}}, 1, -1, {{1, 1}}},
    };
    for (const Case& c : cases) {
        Matrix m = matrix_of(c.before);
        const Matrix shared = m;
        EXPECT_EQ(m.pivot(c.row), c.result) << c.name;
        EXPECT_EQ(rows_of(m), c.after) << c.name;
        EXPECT_EQ(rows_of(shared), c.before) << c.name;
    }
}

TEST(Matrix1, InverseOfSmallMatrices) {
    const std::pair<Rows, Rows> cases[] = {
        {{{4}}, {{0.25}}},
        {{{0, 1}, {1, 0}}, {{0, 1}, {1, 0}}},
        {{{2, 0}, {0, 8}}, {{0.5, 0}, {0, 0.125}}},
        {{{0, 2, 0}, {0, 0, 4}, {8, 0, 0}}, {{0, 0, 0.125}, {0.5, 0, 0}, {0, 0.25, 0}}},
        {{{1, 2}, {3, 4}}, {{-2, 1}, {1.5, -0.5}}},
    };
    for (const auto& [matrix, inverse] : cases) {
        const Rows result = rows_of(!matrix_of(matrix));
        ASSERT_EQ(result.size(), inverse.size());
        for (std::size_t i = 0; i < inverse.size(); ++i) {
            for (std::size_t j = 0; j < inverse.size(); ++j) {
                EXPECT_NEAR(result[i][j], inverse[i][j], 1e-15) << i << ' ' << j;
            }
        }
    }
}

TEST(Matrix1, InverseTimesTheMatrixIsUnit) {
    for (std::size_t n : {1u, 2u, 3u, 7u, 30u}) {
        const Matrix tall = random_matrix(n + 5, n, static_cast<unsigned>(n));
        const Matrix square = ~tall * tall;
        const Rows operand = rows_of(square);
        const Matrix product = !square * square;
        EXPECT_EQ(rows_of(square), operand) << "the operand is left alone";
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) {
                EXPECT_NEAR(product(i, j), i == j ? 1.0 : 0.0, 1e-8) << n << ": " << i << ' ' << j;
            }
        }
    }
}

// By hand: rows exchanged, the upper divided by 2 and subtracted; then column 1 has no pivot.
TEST(Matrix1, SingularMatricesGiveThePartlyReducedInverse) {
    EXPECT_EQ(rows_of(!matrix_of({{0}})), (Rows{{1}}));
    EXPECT_EQ(rows_of(!matrix_of({{0, 1}, {0, 2}})), (Rows{{1, 0}, {0, 1}}));
    Matrix work = matrix_of({{1, 2}, {2, 4}});
    EXPECT_EQ(rows_of(work.Inv()), (Rows{{0, 0.5}, {1, -0.5}}));
    EXPECT_TRUE(work.IsSingular());
    EXPECT_EQ(rows_of(work), (Rows{{1, 2}, {0, 0}}));

    Matrix regular = matrix_of({{2}});
    regular.Inv();
    EXPECT_FALSE(regular.IsSingular());
}

TEST(Matrix1, NanSpreadsButStaysInside) {
    Matrix m = random_matrix(3, 3, 2);
    m(1, 1) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan((!m)(0, 0)));
}

TEST(Matrix1, EmptyMatricesWork) {
    const Matrix none(0, 0);
    EXPECT_EQ((!none).RowNo(), 0u);
    const Matrix zero = Matrix(2, 0) * Matrix(0, 3);
    EXPECT_EQ(rows_of(zero), (Rows{{0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ((~Matrix(0, 3)).RowNo(), 3u);
    EXPECT_EQ((Matrix(0, 2) * Matrix(2, 0)).ColNo(), 0u);
}

TEST(Matrix1, ErrorsSayWhatWasWrong) {
    const Matrix constant(1, 1);
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[] { Matrix(2, 3)(2, 0); }, "matrix1T::operator(): Index out of range!"},
        {[] { Matrix(2, 3)(0, 3); }, "matrix1T::operator(): Index out of range!"},
        {[&] { constant(0, 1); }, "matrix1T::operator(): Index out of range!"},
        {[] { Matrix(2, 3) += Matrix(3, 2); },
         "matrix1T::operator+= : Inconsistent matrix1 sizes in addition!"},
        {[] { Matrix(2, 3) -= Matrix(2, 2); },
         "matrix1T::operator-= : Inconsistent matrix1 sizes in subtraction!"},
        {[] { Matrix(2, 3) * Matrix(2, 3); },
         "matrix1T::operator*= : Inconsistent matrix1 sizes in multiplication!"},
        {[] { !Matrix(2, 3); }, "matrix1T::operator!: Inversion of a non-square matrix1"},
    };
    for (const auto& [act, text] : cases) {
        try {
            act();
            ADD_FAILURE() << "nothing thrown, expected " << text;
        } catch (const math::matrix1_error& error) {
            EXPECT_STREQ(error.what(), text);
        }
    }
}

}  // namespace
