// Inversion is Gauss-Jordan elimination with partial pivoting: column by column, the row with the
// largest element comes up, is divided by that element and subtracted from all other rows until
// they are zero in that column; the same steps turn a unit matrix into the inverse. n^3 operations
// each on two matrices. A sum or a product runs in increasing index from zero, an exchange of rows
// happens only for a strictly larger element, and a quotient is divided, not multiplied by a
// reciprocal: the last bits of the results depend on all of it.
#include "math/matrix1.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace math {

template <typename T>
matrix1<T>::base_mat::base_mat(std::size_t row_count, std::size_t col_count)
    : row(row_count), rows(row_count), cols(col_count) {
    for (auto& elements : row) elements = std::make_unique<T[]>(col_count);
}

template <typename T>
matrix1<T>::matrix1(std::size_t rows, std::size_t cols)
    : mat_(std::make_shared<base_mat>(rows, cols)) {}

template <typename T>
void matrix1<T>::check_index(std::size_t row, std::size_t col) const {
    if (row >= RowNo() || col >= ColNo()) {
        throw matrix1_error("matrix1T::operator(): Index out of range!");
    }
}

template <typename T>
T& matrix1<T>::operator()(std::size_t row, std::size_t col) {
    check_index(row, col);
    make_private();
    return mat_->row[row][col];
}

template <typename T>
T matrix1<T>::operator()(std::size_t row, std::size_t col) const {
    check_index(row, col);
    return mat_->row[row][col];
}

template <typename T>
void matrix1<T>::clone() {
    auto copy = std::make_shared<base_mat>(RowNo(), ColNo());
    for (std::size_t i = 0; i < RowNo(); ++i) {
        std::copy_n(mat_->row[i].get(), ColNo(), copy->row[i].get());
    }
    mat_ = std::move(copy);
}

template <typename T>
void matrix1<T>::make_private() {
    if (mat_.use_count() > 1) clone();
}

template <typename T>
matrix1<T>& matrix1<T>::operator+=(const matrix1& right) {
    if (RowNo() != right.RowNo() || ColNo() != right.ColNo()) {
        throw matrix1_error("matrix1T::operator+= : Inconsistent matrix1 sizes in addition!");
    }
    make_private();
    for (std::size_t i = 0; i < RowNo(); ++i) {
        for (std::size_t j = 0; j < ColNo(); ++j) mat_->row[i][j] += right.mat_->row[i][j];
    }
    return *this;
}

template <typename T>
matrix1<T>& matrix1<T>::operator-=(const matrix1& right) {
    if (RowNo() != right.RowNo() || ColNo() != right.ColNo()) {
        throw matrix1_error("matrix1T::operator-= : Inconsistent matrix1 sizes in subtraction!");
    }
    make_private();
    for (std::size_t i = 0; i < RowNo(); ++i) {
        for (std::size_t j = 0; j < ColNo(); ++j) mat_->row[i][j] -= right.mat_->row[i][j];
    }
    return *this;
}

// The inner index runs in the middle loop, so that rows are read in the order in which they lie in
// memory; every element still adds up in increasing inner index.
template <typename T>
matrix1<T>& matrix1<T>::operator*=(const matrix1& right) {
    if (ColNo() != right.RowNo()) {
        throw matrix1_error("matrix1T::operator*= : Inconsistent matrix1 sizes in multiplication!");
    }
    matrix1 product(RowNo(), right.ColNo());
    for (std::size_t i = 0; i < RowNo(); ++i) {
        T* sums = product.mat_->row[i].get();
        for (std::size_t inner = 0; inner < ColNo(); ++inner) {
            const T factor = mat_->row[i][inner];
            const T* elements = right.mat_->row[inner].get();
            for (std::size_t j = 0; j < right.ColNo(); ++j) sums[j] += factor * elements[j];
        }
    }
    return *this = product;
}

template <typename T>
matrix1<T>& matrix1<T>::operator*=(const T& factor) {
    const T value = factor;  // may be an element of this very matrix
    make_private();
    for (std::size_t i = 0; i < RowNo(); ++i) {
        for (std::size_t j = 0; j < ColNo(); ++j) mat_->row[i][j] *= value;
    }
    return *this;
}

template <typename T>
matrix1<T> matrix1<T>::operator-() const {
    matrix1 result(RowNo(), ColNo());
    for (std::size_t i = 0; i < RowNo(); ++i) {
        for (std::size_t j = 0; j < ColNo(); ++j) result.mat_->row[i][j] = -mat_->row[i][j];
    }
    return result;
}

template <typename T>
matrix1<T> matrix1<T>::operator~() const {
    matrix1 result(ColNo(), RowNo());
    for (std::size_t i = 0; i < RowNo(); ++i) {
        for (std::size_t j = 0; j < ColNo(); ++j) result.mat_->row[j][i] = mat_->row[i][j];
    }
    return result;
}

template <typename T>
matrix1<T> matrix1<T>::operator!() const {
    matrix1 work = *this;
    return work.Inv();
}

template <typename T>
matrix1<T>& matrix1<T>::Unit() {
    make_private();
    const std::size_t size = std::min(RowNo(), ColNo());
    mat_->rows = size;
    mat_->cols = size;
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) mat_->row[i][j] = i == j ? T(1) : T(0);
    }
    return *this;
}

template <typename T>
int matrix1<T>::pivot(std::size_t row) {
    if (row >= RowNo() || row >= ColNo()) return -1;
    std::size_t chosen = row;
    T largest = T(-1);
    for (std::size_t k = row; k < RowNo(); ++k) {
        const T magnitude = std::abs(mat_->row[k][row]);
        if (magnitude > largest && magnitude != T(0)) {
            largest = magnitude;
            chosen = k;
        }
    }
    if (mat_->row[chosen][row] == T(0)) return -1;
    if (chosen == row) return 0;
    make_private();
    std::swap(mat_->row[chosen], mat_->row[row]);
    return static_cast<int>(chosen);
}

template <typename T>
matrix1<T> matrix1<T>::Inv() {
    if (RowNo() != ColNo()) {
        throw matrix1_error("matrix1T::operator!: Inversion of a non-square matrix1");
    }
    matrix1 inverse(RowNo(), ColNo());
    inverse.Unit();
    make_private();
    singular_ = false;
    for (std::size_t k = 0; k < RowNo(); ++k) {
        const int exchanged = pivot(k);
        if (exchanged == -1) {
            singular_ = true;
            break;
        }
        if (exchanged != 0) {
            std::swap(inverse.mat_->row[k], inverse.mat_->row[static_cast<std::size_t>(exchanged)]);
        }
        reduce_column(k, inverse);
    }
    return inverse;
}

// Makes column k that of the unit matrix, in this matrix; the same row operations go to `inverse`.
template <typename T>
void matrix1<T>::reduce_column(std::size_t k, matrix1& inverse) {
    T* left = mat_->row[k].get();
    T* right = inverse.mat_->row[k].get();
    const T divisor = left[k];
    for (std::size_t j = 0; j < ColNo(); ++j) {
        left[j] /= divisor;
        right[j] /= divisor;
    }
    for (std::size_t i = 0; i < RowNo(); ++i) {
        if (i == k) continue;
        const T factor = mat_->row[i][k];
        for (std::size_t j = 0; j < ColNo(); ++j) {
            mat_->row[i][j] -= factor * left[j];
            inverse.mat_->row[i][j] -= factor * right[j];
        }
    }
}

template class matrix1<double>;

}  // namespace math
