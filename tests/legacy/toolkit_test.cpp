// The numerical toolkit: what its fixed names promise beyond the engine's own tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "legacy/bitset.h"
#include "legacy/deviates.h"
#include "legacy/distributions.h"
#include "legacy/offset_owner.h"
#include "legacy/random.h"
#include "legacy/recursive_sort.h"
#include "legacy/scalars.h"
#include "support/console_capture.h"
#include "support/program_end.h"

namespace vort::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;

TEST(LegacyDistributions, ValuesWarningsAndEnds) {
    double value = 0, gln = 0;
    EXPECT_NEAR(pchisq(1, 3.841459), 0.95, 3e-7);
    EXPECT_NEAR(pnormal(-1.959964), 0.025, 3e-7);
    EXPECT_NEAR(gammln(0.5), 0.57236494292519839, 2e-14);
    const ConsoleCapture console;
    gser(&value, 0.5, 2, &gln);  // past x = a + 1, where P takes the other form
    EXPECT_NEAR(value, std::erf(std::sqrt(2.0)), 3e-7);
    EXPECT_EQ(gln, gammln(0.5));
    gcf(&value, 1, 3, &gln);
    EXPECT_NEAR(value, std::exp(-3.0), 3e-7);
    EXPECT_EQ(console.text(), "");
    gammp(1e5, 1e5);
    gcf(&value, 0.5, std::nan(""), &gln);
    EXPECT_EQ(
        console.text(),
        "a too large, ITMAX too small in routing gser\na too large, ITMAX too small in gcf\n");
    const std::string domain = "^ error for the input parameter in gammp function\n$";
    EXPECT_EXIT((console_to_stderr(), pchisq(0, 1)), ExitedWithCode(1), domain);
    EXPECT_EXIT((console_to_stderr(), gammp(1, -1e-9)), ExitedWithCode(1), domain);
    EXPECT_EXIT((console_to_stderr(), gser(&value, 1, -1, &gln)), ExitedWithCode(1), "in routing");
}

std::vector<int> state() {
    return {RX, RY, RZ};
}

// Orders drawn from a list by hand: 0.0507 * 10 takes place 1, 0.6596 * 9 place 6 of what is left.
TEST(LegacyRandom, StartsWithKnownNumbers) {
    init_rand1();
    EXPECT_DOUBLE_EQ(rand1(), 0.050705517581820986);
    for (int i = 1; i < 999; ++i) rand1();
    EXPECT_EQ(rand1(), 0.13549605382579522);
    EXPECT_THAT(state(), ElementsAre(9292, 8811, 16308));
    init_rand1();
    std::vector<int> order(12, -7);
    randomsort(10, order.data());
    EXPECT_THAT(order, ElementsAre(-7, 1, 7, 10, 8, 5, 9, 3, 4, 2, 6, -7));
    init_rand1();
    std::vector<short> y = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    EXPECT_EQ(permutation1(y.data(), 10), 0);
    EXPECT_THAT(y, ElementsAre(10, 70, 100, 80, 50, 90, 30, 40, 20, 60));
    std::srand(5);
    const int first = std::rand();
    std::srand(5);
    EXPECT_EQ(rand2(), first / 2147483647.0);
}

// A separate computation; see the distributions' definitions.
TEST(LegacyRandom, DeviatesStartWithKnownNumbers) {
    init_rand1();
    EXPECT_NEAR(nrandom(0.0, 1.0), -0.41067583453910017, 1e-15);
    EXPECT_NEAR(nrandom(5.0, 2.0), 5.0 + 2.0 * 0.08346656158964563, 1e-14);
    init_rand1();
    EXPECT_NEAR(llgamma(5, 2.0), 2.0925998508333974, 1e-14);
    init_rand1();
    EXPECT_NEAR(llgamma(6, 2.0), 2.77312668008298, 1e-14);
    init_rand1();
    EXPECT_TRUE(rpoisson(0.5, 9) == 0 && rpoisson(0.5, 9) == 2 && rpoisson(50.0, -1) == -1);
    init_rand1();
    const double a = chisq(2), b = chisq(6);
    init_rand1();
    int alpha[] = {-7, 1, 3};
    std::vector<double> p(4, -7.0);
    Dirichlet(p.data(), alpha, 2);
    EXPECT_THAT(p, ElementsAre(-7.0, a / (a + b), b / (a + b), -7.0));
    init_rand1();
    p = {-7.0, 0.1, 0.5, 0.3};
    std::vector<int> counts(5, -7);
    multinomial(5, p.data(), counts.data(), 3);
    EXPECT_THAT(counts, ElementsAre(-7, 1, 1, 2, -7)) << "one is above the last bound";
    EXPECT_EXIT(chisq(0), ExitedWithCode(1), "");
}

// By hand: item 1 is the pivot, items 2 and 4 go to the front, 3 and 5 to the back from its end.
TEST(LegacySorts, MoveTheirCompanions) {
    init_rand1();
    double up[] = {-7, 2, 1, 2, 1, 2}, down[] = {-7, 1, 2, 1, 2, 1}, plain[] = {3, -1, 2};
    std::vector<int> b = {-7, 1, 2, 3, 4, 5}, c = b;
    quicksortsort(up, b.data(), 5);
    EXPECT_THAT(b, ElementsAre(-7, 2, 4, 1, 5, 3));
    EXPECT_THAT(up, ElementsAre(-7, 1, 1, 2, 2, 2));
    init_rand1();
    Lquicksortsort(down, c.data(), 5);
    EXPECT_EQ(c, b);
    EXPECT_THAT(down, ElementsAre(-7, 2, 2, 1, 1, 1));
    quicksort(plain, 3);
    EXPECT_THAT(plain, ElementsAre(-1, 2, 3));
}

// Every element is zero, can be written on its own and, under the address sanitizer, lies inside.
template <typename T>
void expect_usable(T* v, long low, long high) {
    for (long i = low; i <= high; ++i) {
        EXPECT_EQ(v[i], T(0));
        v[i] = static_cast<T>(i - low + 1);
    }
    for (long i = low; i <= high; ++i) EXPECT_EQ(v[i], static_cast<T>(i - low + 1));
}

template <auto new_vector, auto free_vector, auto new_matrix, auto free_rows, auto new_array,
          auto free_array>
void check_family() {
    for (const auto& [low, high] : {std::pair{1L, 5L}, {-3L, 2L}, {-2L, -3L}}) {
        auto* v = new_vector(low, high);
        expect_usable(v, low, high);
        free_vector(v, low, high);
        auto** m = new_matrix(2, 4, low, high);
        for (long i = 2; i <= 4; ++i) expect_usable(m[i], low, high);
        free_rows(m, 2, 4, low, high);
        auto*** a = new_array(0, 1, -1, 3, low, high);
        for (long i = 0; i <= 1; ++i) {
            for (long j = -1; j <= 3; ++j) expect_usable(a[i][j], low, high);
        }
        free_array(a, 0, 1, -1, 3, low, high);
    }
}

TEST(LegacyArrays, CoverTheirRanges) {
    check_family<dvector, free_dvector, matrix, free_matrix, array, free_array>();
    check_family<ivector, free_ivector, imatrix, free_imatrix, iarray, free_iarray>();
    check_family<cvector, free_cvector, cmatrix, free_cmatrix, carray, free_carray>();
    const int lengths[] = {-1, 3, 0, 7};  // rows 1 .. 3 are used
    int** m = ihmatrix(1, 3, lengths);
    int*** a = iharray(1, 3, lengths, -1, 4);
    for (int r = 1; r <= 3; ++r) {
        expect_usable(m[r], 1, lengths[r]);
        for (int i = 1; i <= lengths[r]; ++i) expect_usable(a[r][i], -1, 4);
    }
    free_ihmatrix(m, 1, 3);
    free_iharray(a, 1, 3, lengths, -1, 4);
    EXPECT_EXIT(iarray(1, 64, 1, LONG_MAX / 2, 1, 1), ExitedWithCode(1),
                "^Numerical Recipes run-time error...\nallocation failure 2 in d3tensor\\(\\)\n");
}

TEST(LegacyScalars, HaveKnownValues) {
    const double from[] = {9, 1, 2, 3, 9};
    double to[] = {7, 7, 7, 7, 7};
    cpvec(to, from, 3);
    EXPECT_TRUE(to[0] == 7 && to[4] == 7 && compvec(to, from, 3) == 1 && compvec(to, from, 4) == 0);
    EXPECT_TRUE(imin(-3, 2) == -3 && imax(-3, 2) == 2 && std::signbit(dmin(0.0, -0.0)));
    EXPECT_TRUE(power(1.5, 3) == 3.375 && ipower(-2, 31) == INT_MIN && ipower(2, 32) == 0);
    EXPECT_NEAR(dennorm(0.0, 0.0, 1.0), 0.398942280407133977, 1e-15) << "2 pi to ten digits";
}

TEST(LegacyBitset, KeepsItsPositions) {
    bitset small(9), large(9), longer(10);
    small.SetbitOne(8);
    for (const unsigned long i : {0UL, 8UL, 9UL}) {
        large.SetbitOne(i);
        longer.SetbitOne(i);
    }
    EXPECT_TRUE(large.SizeofSet() == 2 && longer.SizeofSet() == 3 && longer[9] != 0);
    EXPECT_TRUE(small.ifincludein(&large) == 1 && large.ifincludein(&small) == 0);
    EXPECT_EQ(small.ifincludein(&longer), 0) << "sizes differ";
    large.SetbitZero(0);
    const ConsoleCapture console;
    large.ShowBitSet();
    EXPECT_EQ(console.text(), "000000001\n");
}

}  // namespace
}  // namespace vort::testing
