// Owners of offset-indexed arrays: freed at the end of their scope, movable, not copyable.
//
//     OffsetVector<double> p(1, n);
//     OffsetVector<int> order(1, n);
//     p[1] = 0.5;
//     Quickindex(p.data(), order.data(), n);
//
// T is double, int or char. Indices are not checked; elements start as zero.
#pragma once

#include <memory>

#include "legacy/offset_arrays.h"

namespace vort {

// Which functions of the family serve an element type.
template <typename T>
struct OffsetFamily;

template <>
struct OffsetFamily<double> {
    static constexpr auto vector = dvector;
    static constexpr auto free_vector = free_dvector;
    static constexpr auto matrix = vort::matrix;
    static constexpr auto free_matrix = vort::free_matrix;
};

template <>
struct OffsetFamily<int> {
    static constexpr auto vector = ivector;
    static constexpr auto free_vector = free_ivector;
    static constexpr auto matrix = imatrix;
    static constexpr auto free_matrix = free_imatrix;
};

template <>
struct OffsetFamily<char> {
    static constexpr auto vector = cvector;
    static constexpr auto free_vector = free_cvector;
    static constexpr auto matrix = cmatrix;
    static constexpr auto free_matrix = free_cmatrix;
};

// Elements nl .. nh.
template <typename T>
class OffsetVector {
  public:
    OffsetVector(long nl, long nh) : data_(OffsetFamily<T>::vector(nl, nh), Free{nl, nh}) {}

    // The shifted pointer: data()[nl] is the first element.
    T* data() { return data_.get(); }
    const T* data() const { return data_.get(); }
    T& operator[](long i) { return data_.get()[i]; }
    const T& operator[](long i) const { return data_.get()[i]; }

  private:
    struct Free {
        long nl;
        long nh;
        void operator()(T* v) const { OffsetFamily<T>::free_vector(v, nl, nh); }
    };

    std::unique_ptr<T, Free> data_;
};

// Rows nrl .. nrh of elements ncl .. nch.
template <typename T>
class OffsetMatrix {
  public:
    OffsetMatrix(long nrl, long nrh, long ncl, long nch)
        : data_(OffsetFamily<T>::matrix(nrl, nrh, ncl, nch), Free{nrl, nrh, ncl, nch}) {}

    // The shifted table of shifted rows: data()[nrl][ncl] is the first element.
    T** data() { return data_.get(); }
    T* operator[](long row) { return data_.get()[row]; }
    const T* operator[](long row) const { return data_.get()[row]; }

  private:
    struct Free {
        long nrl;
        long nrh;
        long ncl;
        long nch;
        void operator()(T** m) const { OffsetFamily<T>::free_matrix(m, nrl, nrh, ncl, nch); }
    };

    std::unique_ptr<T*, Free> data_;
};

}  // namespace vort
