#include "numeric/offset_arrays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

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

struct Bounds {
    long low, high;
};
constexpr Bounds kBounds[] = {{1, 5}, {0, 0}, {-3, 2}, {1000000, 1000003}, {-2, -3}};

// Every element is zero, can be written on its own and, under the address sanitizer, lies inside.
template <typename T>
void expect_usable(T* v, Bounds b) {
    for (long i = b.low; i <= b.high; ++i) {
        EXPECT_EQ(v[i], T(0));
        v[i] = static_cast<T>(i - b.low + 1);
    }
    for (long i = b.low; i <= b.high; ++i) EXPECT_EQ(v[i], static_cast<T>(i - b.low + 1));
}

template <auto new_vector, auto free_vector, auto new_matrix, auto free_rows, auto new_array,
          auto free_array>
void check_family() {
    for (const Bounds r : kBounds) {
        auto* v = new_vector(r.low, r.high);
        expect_usable(v, r);
        free_vector(v, r.low, r.high);
        for (const Bounds c : kBounds) {
            auto** m = new_matrix(r.low, r.high, c.low, c.high);
            for (long i = r.low; i <= r.high; ++i) expect_usable(m[i], c);
            free_rows(m, r.low, r.high, c.low, c.high);
            for (const Bounds d : kBounds) {
                auto*** a = new_array(r.low, r.high, c.low, c.high, d.low, d.high);
                for (long i = r.low; i <= r.high; ++i) {
                    for (long j = c.low; j <= c.high; ++j) expect_usable(a[i][j], d);
                }
                free_array(a, r.low, r.high, c.low, c.high, d.low, d.high);
            }
        }
    }
}

TEST(OffsetArrays, CoverTheirRanges) {
    check_family<dvector, free_dvector, matrix, free_matrix, array, free_array>();
    check_family<ivector, free_ivector, imatrix, free_imatrix, iarray, free_iarray>();
    check_family<cvector, free_cvector, cmatrix, free_cmatrix, carray, free_carray>();

    const int lengths[] = {-1, 3, 0, 7};  // rows 1 .. 3 are used
    int** m = ihmatrix(1, 3, lengths);
    int*** a = iharray(1, 3, lengths, -1, 4);
    for (int r = 1; r <= 3; ++r) {
        expect_usable(m[r], {1, lengths[r]});
        for (int i = 1; i <= lengths[r]; ++i) expect_usable(a[r][i], {-1, 4});
    }
    free_ihmatrix(m, 1, 3);
    free_iharray(a, 1, 3, lengths, -1, 4);
}

TEST(OffsetArraysEnd, ImpossibleSizesAreFatal) {
    static constexpr long kMax = LONG_MAX;
    static const int kLengths[] = {-1, 1};
    const std::pair<const char*, void (*)()> failures[] = {
        {" in dvector()", [] { dvector(1, -1); }},
        {" in dvector()", [] { dvector(LONG_MIN, kMax); }},
        {" in dvector()", [] { dvector(1, kMax >> 14); }},  // the system refuses
        {" in ivector()", [] { ivector(0, -2); }},
        {" 2 in matrix()", [] { ihmatrix(0, 0, kLengths); }},
        {" 2 in d3tensor()", [] { iarray(1, 64, 1, kMax / 2, 1, 1); }},
        {" 3 in d3tensor()", [] { carray(1, 64, 1, 64, 1, kMax / 2); }},
        {" 2 in iharray()", [] { iharray(0, 0, kLengths, 1, 1); }},
        {" 3 in iharray()", [] { iharray(1, 1, kLengths, 1, -1); }}};
    for (const auto& [text, allocate] : failures) {
        EXPECT_EXIT((allocate(), std::exit(0)), ExitedWithCode(1),
                    ::testing::EndsWith(
                        std::string("Numerical Recipes run-time error...\nallocation failure") +
                        text + "\n...now exiting to system...\n"));
    }
}

// A matrix alive at an early end is no leak; the leak checker turns one into another status.
TEST(OffsetArraysEnd, ArraysMayBeAliveThen) {
    const auto end = [] { std::exit(OffsetMatrix<double>(1, 3, 1, 4)[1][1] == 0.0 ? 0 : 2); };
    EXPECT_EXIT(end(), ExitedWithCode(0), "");
}

TEST(Scalars, HaveKnownValues) {
    const double from[] = {9, 1, 2, 3, 9};
    double to[] = {7, 7, 7, 7, 7};
    cpvec(to, from, 3);
    EXPECT_TRUE(to[0] == 7 && to[4] == 7 && compvec(to, from, 3) == 1 && compvec(to, from, 4) == 0);
    EXPECT_TRUE(imin(-3, 2) == -3 && imax(-3, 2) == 2 && dmin(0.25, 0.5) == 0.25);
    EXPECT_TRUE(std::signbit(dmin(0.0, -0.0))) << "the second of two equal values";
    EXPECT_TRUE(power(1.5, 3) == 3.375 && power(7.0, -2) == 1.0 && ipower(3, 4) == 81);
    EXPECT_TRUE(ipower(-2, 31) == INT_MIN && ipower(2, 32) == 0);
    // 1 / sqrt(6.283185307) and that times exp(-9/8) / 2, to 16 digits; 2 pi in full would give
    // 0.3989422804014327 for the first.
    EXPECT_NEAR(dennorm(0.0, 0.0, 1.0), 0.398942280407133977, 1e-15);
    EXPECT_NEAR(dennorm(4.0, 1.0, 4.0), 0.0647587978338713342, 1e-15);
}

}  // namespace
}  // namespace vort
