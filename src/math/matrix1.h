// Dense matrix with shared storage and copy-on-write.
//
// Copying a handle shares its storage; whatever writes through a handle makes the storage private
// first, so a copy costs nothing until one of the two changes:
//
//     math::matrix1<double> a(2, 2);
//     a.Unit();
//     math::matrix1<double> b = a;  // shares
//     b(0, 1) = 3.0;                // b gets its own storage, a is unchanged
//     a = !(~b * b);                // inverse of b'b
//
// Indices are 0-based, rows first. Errors are thrown as matrix1_error. Not for use from several
// threads at once.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <vector>

namespace math {

class matrix1_error : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

template <typename T>
class matrix1 {
  public:
    // Elements start as zero.
    matrix1(std::size_t rows, std::size_t cols);

    // Sharing needs no work of its own, and a moved-from handle must stay a matrix: declaring the
    // copies makes moves copy.
    matrix1(const matrix1&) = default;
    matrix1& operator=(const matrix1&) = default;
    ~matrix1() = default;

    std::size_t RowNo() const { return mat_->rows; }
    std::size_t ColNo() const { return mat_->cols; }

    // Both throw where row or col is out of range. The first makes the storage private, even where
    // the element is only read; go through a constant matrix to read without a copy. The reference
    // is valid until the handle is assigned to, cloned or destroyed.
    T& operator()(std::size_t row, std::size_t col);
    T operator()(std::size_t row, std::size_t col) const;

    // Gives this handle a private copy of its storage, whether it is shared or not.
    void clone();

    matrix1& operator+=(const matrix1& right);
    matrix1& operator-=(const matrix1& right);
    matrix1& operator*=(const matrix1& right);
    matrix1& operator*=(const T& factor);

    matrix1 operator-() const;
    // Transpose.
    matrix1 operator~() const;
    // Inverse; see Inv() for a singular matrix.
    matrix1 operator!() const;

    // Cuts both dimensions to the smaller one and makes this the unit matrix.
    matrix1& Unit();

    // Brings the element of column `row` with the largest magnitude, among rows row and below, up
    // to row `row`. Returns the row it was exchanged with, 0 where no exchange was needed, and -1
    // where all those elements are 0.
    int pivot(std::size_t row);

    // The inverse of a square matrix. This matrix serves as the work space and is reduced to the
    // unit matrix on the way. A singular matrix throws nothing: the reduction stops at the first
    // column without a pivot, the result is returned as it stands, and IsSingular() is set here.
    matrix1 Inv();
    bool IsSingular() const { return singular_; }

    friend matrix1 operator-(matrix1 left, const matrix1& right) { return left -= right; }
    friend matrix1 operator*(matrix1 left, const matrix1& right) { return left *= right; }
    friend matrix1 operator*(matrix1 left, const T& factor) { return left *= factor; }
    friend matrix1 operator*(const T& factor, matrix1 right) { return right *= factor; }

  private:
    // Rows are separate arrays, so that two of them can be exchanged by their pointers; Unit() may
    // leave more of them allocated than counted. How many handles share a record is the count of
    // the shared pointer.
    struct base_mat {
        base_mat(std::size_t row_count, std::size_t col_count);

        std::vector<std::unique_ptr<T[]>> row;
        std::size_t rows;
        std::size_t cols;
    };

    void make_private();
    void check_index(std::size_t row, std::size_t col) const;
    void reduce_column(std::size_t k, matrix1& inverse);

    std::shared_ptr<base_mat> mat_;
    bool singular_ = false;
};

extern template class matrix1<double>;

}  // namespace math
