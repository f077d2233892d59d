#include "numeric/offset_arrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "numeric/nrerror.h"
#include "numeric/offset_owner.h"
#include "numeric/scalars.h"

// Lets the address sanitizer refuse a size as the C library does, instead of ending the process.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace vort {
namespace {

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

struct Bounds {
    long low, high;
};
constexpr Bounds kBounds[] = {{1, 5}, {0, 0}, {-3, 2}, {1000000, 1000003}, {1, 0}, {-2, -3}};

// Every element is zero, can be written on its own and, under the address sanitizer, lies inside.
template <typename T>
void expect_usable(T* v, Bounds b) {
    for (long i = b.low; i <= b.high; ++i) {
        EXPECT_EQ(v[i], T(0));
        v[i] = static_cast<T>(i - b.low + 1);
    }
    for (long i = b.low; i <= b.high; ++i) EXPECT_EQ(v[i], static_cast<T>(i - b.low + 1));
}

template <typename T, auto allocate, auto release>
void check_vectors() {
    for (const Bounds b : kBounds) {
        T* v = allocate(b.low, b.high);
        expect_usable(v, b);
        release(v, b.low, b.high);
    }
}

template <typename T, auto allocate, auto release>
void check_matrices() {
    for (const Bounds r : kBounds) {
        for (const Bounds c : kBounds) {
            T** m = allocate(r.low, r.high, c.low, c.high);
            for (long i = r.low; i <= r.high; ++i) expect_usable(m[i], c);
            release(m, r.low, r.high, c.low, c.high);
        }
    }
}

template <typename T, auto allocate, auto release>
void check_arrays() {
    for (const Bounds r : kBounds) {
        for (const Bounds c : kBounds) {
            for (const Bounds d : kBounds) {
                T*** a = allocate(r.low, r.high, c.low, c.high, d.low, d.high);
                for (long i = r.low; i <= r.high; ++i) {
                    for (long j = c.low; j <= c.high; ++j) expect_usable(a[i][j], d);
                }
                release(a, r.low, r.high, c.low, c.high, d.low, d.high);
            }
        }
    }
}

TEST(OffsetArrays, CoverTheirRanges) {
    check_vectors<double, dvector, free_dvector>();
    check_vectors<int, ivector, free_ivector>();
    check_vectors<char, cvector, free_cvector>();
    check_matrices<double, matrix, free_matrix>();
    check_matrices<int, imatrix, free_imatrix>();
    check_matrices<char, cmatrix, free_cmatrix>();
    check_arrays<double, array, free_array>();
    check_arrays<int, iarray, free_iarray>();
    check_arrays<char, carray, free_carray>();
}

TEST(OffsetArrays, RaggedRowsHaveTheirOwnLengths) {
    const int lengths[] = {kBounds[0].low, 3, 0, 7};  // rows 1 .. 3 are used
    int** m = ihmatrix(1, 3, lengths);
    for (int r = 1; r <= 3; ++r) expect_usable(m[r], {1, lengths[r]});
    free_ihmatrix(m, 1, 3);

    int*** a = iharray(1, 3, lengths, -1, 4);
    for (int r = 1; r <= 3; ++r) {
        for (int i = 1; i <= lengths[r]; ++i) expect_usable(a[r][i], {-1, 4});
    }
    free_iharray(a, 1, 3, lengths, -1, 4);
}

TEST(OffsetOwner, MovesWithItsElements) {
    OffsetVector<int> first(2, 4);
    first[4] = 9;
    OffsetVector<int> second(std::move(first));
    EXPECT_EQ(second[4], 9);
    OffsetVector<int> third(1, 1);
    third = std::move(second);
    EXPECT_EQ(third.data()[4], 9);

    OffsetMatrix<double> rows(1, 2, 0, 3);
    rows[2][3] = 0.5;
    OffsetMatrix<double> other(5, 6, 7, 8);
    other = std::move(rows);
    EXPECT_EQ(other.data()[2][3], 0.5);
}

constexpr long kMax = LONG_MAX;
constexpr long kMuch = LONG_MAX / 16;
const int kNegative[] = {-1};
const int kOne[] = {1};

struct Failure {
    const char* text;
    void (*allocate)();
};
const Failure kFailures[] = {
    {"allocation failure in dvector()", [] { dvector(1, -1); }},
    {"allocation failure in dvector()", [] { dvector(1, kMax); }},
    {"allocation failure in dvector()", [] { dvector(LONG_MIN, kMax); }},
    {"allocation failure in dvector()", [] { dvector(LONG_MIN, LONG_MIN + kMuch * 4); }},
    {"allocation failure in dvector()", [] { dvector(1, kMuch / 1024); }},  // the system refuses
    {"allocation failure in ivector()", [] { ivector(0, -2); }},
    {"allocation failure in cvector()", [] { cvector(0, -2); }},
    {"allocation failure 1 in matrix()", [] { matrix(1, -1, 1, 1); }},
    {"allocation failure 2 in matrix()", [] { matrix(1, 1, 1, -1); }},
    {"allocation failure 1 in matrix()", [] { imatrix(1, kMax, 1, 1); }},
    {"allocation failure 2 in matrix()", [] { cmatrix(1, 1, 0, kMax - 1); }},
    {"allocation failure 1 in matrix()", [] { ihmatrix(1, -1, kOne); }},
    {"allocation failure 2 in matrix()", [] { ihmatrix(0, 0, kNegative); }},
    {"allocation failure in 1 in d3tensor()", [] { array(1, -1, 1, 1, 1, 1); }},
    {"allocation failure 2 in d3tensor()", [] { array(1, 1, 1, -1, 1, 1); }},
    {"allocation failure 2 in d3tensor()", [] { iarray(1, 64, 1, kMuch * 8, 1, 1); }},
    {"allocation failure 3 in d3tensor()", [] { iarray(1, 1, 1, 1, 1, -1); }},
    {"allocation failure 3 in d3tensor()", [] { carray(1, 64, 1, 64, 1, kMax / 2); }},
    {"allocation failure 1 in iharray()", [] { iharray(1, -1, kOne, 1, 1); }},
    {"allocation failure 2 in iharray()", [] { iharray(0, 0, kNegative, 1, 1); }},
    {"allocation failure 3 in iharray()", [] { iharray(0, 0, kOne, 1, -1); }},
};

TEST(OffsetArraysEnd, ImpossibleSizesAreFatal) {
    for (const Failure& failure : kFailures) {
        EXPECT_EXIT((failure.allocate(), std::exit(0)), ExitedWithCode(1), HasSubstr(failure.text));
    }
}

// A matrix alive at an early end is no leak; the leak checker turns one into another status.
TEST(OffsetArraysEnd, ArraysMayBeAliveThen) {
    EXPECT_EXIT(
        {
            const OffsetMatrix<double> alive(1, 3, 1, 4);
            std::exit(alive[1][1] == 0.0 ? 0 : 2);
        },
        ExitedWithCode(0), "");
}

TEST(NrerrorEnd, WritesThreeLinesAndEndsWithStatusOne) {
    EXPECT_EXIT(nrerror("out of cheese"), ExitedWithCode(1),
                ::testing::StrEq("Numerical Recipes run-time error...\nout of cheese\n"
                                 "...now exiting to system...\n"));
}

TEST(Scalars, PowersAndExtremes) {
    EXPECT_EQ(imin(-3, 2), -3);
    EXPECT_EQ(imax(-3, 2), 2);
    EXPECT_EQ(dmin(0.25, 0.5), 0.25);
    EXPECT_EQ(dmin(0.5, 0.25), 0.25);
    EXPECT_TRUE(std::signbit(dmin(0.0, -0.0))) << "the second of two equal values";
    EXPECT_EQ(power(1.5, 3), 3.375);
    EXPECT_EQ(power(-2.0, 5), -32.0);
    EXPECT_EQ(power(7.0, 0), 1.0);
    EXPECT_EQ(power(7.0, -2), 1.0);
    EXPECT_EQ(ipower(3, 4), 81);
    EXPECT_EQ(ipower(-2, 31), INT_MIN);
    EXPECT_EQ(ipower(2, 32), 0);
    EXPECT_EQ(ipower(5, -1), 1);
}

template <typename T>
void check_vector_utilities() {
    const std::vector<T> from = {9, 1, 2, 3, 9};
    std::vector<T> to = {7, 7, 7, 7, 7};
    cpvec(to.data(), from.data(), 3);
    EXPECT_EQ(to, (std::vector<T>{7, 1, 2, 3, 7}));
    EXPECT_EQ(compvec(to.data(), from.data(), 3), 1) << "elements 0 and 4 take no part";
    EXPECT_EQ(compvec(to.data(), from.data(), 4), 0);
    to[1] = 5;
    EXPECT_EQ(compvec(to.data(), from.data(), 3), 0);
    EXPECT_EQ(compvec(to.data(), from.data(), 0), 1);
}

TEST(Scalars, VectorUtilitiesWorkOnElementsFromOne) {
    check_vector_utilities<double>();
    check_vector_utilities<int>();
}

TEST(Scalars, NormalDensityHasItsOwnTwoPi) {
    // 1 / sqrt(6.283185307) and that times exp(-9/8) / 2, to 16 digits; 2 pi in full would give
    // 0.3989422804014327 for the first.
    EXPECT_NEAR(dennorm(0.0, 0.0, 1.0), 0.398942280407133977, 1e-15);
    EXPECT_NEAR(dennorm(4.0, 1.0, 4.0), 0.0647587978338713342, 1e-15);
}

}  // namespace
}  // namespace vort
