// The numerical toolkit: what its fixed names promise beyond the engine's own tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "legacy/bitset.h"
#include "legacy/deviates.h"
#include "legacy/distributions.h"
#include "legacy/offset_arrays.h"
#include "legacy/random.h"
#include "legacy/scalars.h"
#include "support/console_capture.h"
#include "support/program_end.h"

namespace vort::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ExitedWithCode;

TEST(LegacyToolkit, DistributionsWarnAndEnd) {
    double value = 0, gln = 0;
    EXPECT_NEAR(pnormal(-1.959964), 0.025, 3e-7);
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
    EXPECT_EXIT((console_to_stderr(), pchisq(0, 1)), ExitedWithCode(1), "^ error for the input");
    EXPECT_EXIT((console_to_stderr(), gser(&value, 1, -1, &gln)), ExitedWithCode(1), "in routing");
}

// Orders drawn from a list by hand: 0.0507 * 10 takes place 1, 0.6596 * 9 place 6 of what is left.
// The deviates by a separate computation.
TEST(LegacyToolkit, RandomNumbersAreKnown) {
    init_rand1();
    for (int i = 0; i < 999; ++i) rand1();
    EXPECT_EQ(rand1(), 0.13549605382579522);
    EXPECT_TRUE(RX == 9292 && RY == 8811 && RZ == 16308);
    std::vector<int> order(12, -7), counts(5, -7);
    init_rand1();
    randomsort(10, order.data());
    EXPECT_THAT(order, ElementsAre(-7, 1, 7, 10, 8, 5, 9, 3, 4, 2, 6, -7));
    std::vector<short> y = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    init_rand1();
    EXPECT_EQ(permutation1(y.data(), 10), 0);
    EXPECT_THAT(y, ElementsAre(10, 70, 100, 80, 50, 90, 30, 40, 20, 60));
    init_rand1();
    EXPECT_NEAR(nrandom(5.0, 2.0), 5.0 - 2.0 * 0.41067583453910017, 1e-14);
    init_rand1();
    EXPECT_NEAR(llgamma(6, 2.0), 2.77312668008298, 1e-14);
    init_rand1();
    EXPECT_TRUE(rpoisson(0.5, 9) == 0 && rpoisson(0.5, 9) == 2 && rpoisson(50.0, -1) == -1);
    std::vector<double> bounds = {-7.0, 0.1, 0.5, 0.3};
    init_rand1();
    multinomial(5, bounds.data(), counts.data(), 3);
    EXPECT_THAT(counts, ElementsAre(-7, 1, 1, 2, -7)) << "one is above the last bound";
}

// Every element is zero and can be written; under the address sanitizer, it lies inside.
TEST(LegacyToolkit, ArraysCoverTheirRanges) {
    double*** a = array(0, 1, -1, 3, 5, 9);
    const int lengths[] = {-1, 3, 0, 7};  // rows 1 .. 3 are used
    int** ragged = ihmatrix(1, 3, lengths);
    char** m = cmatrix(-2, 0, 1, 2);
    for (double* cell : {&a[0][-1][5], &a[1][3][9], &a[1][-1][5]}) EXPECT_EQ((*cell)++, 0.0);
    for (int* cell : {&ragged[1][1], &ragged[1][3], &ragged[3][7]}) EXPECT_EQ((*cell)++, 0);
    for (char* cell : {&m[-2][1], &m[-2][2], &m[0][2]}) EXPECT_EQ((*cell)++, '\0');
    free_array(a, 0, 1, -1, 3, 5, 9);
    free_ihmatrix(ragged, 1, 3);
    free_cmatrix(m, -2, 0, 1, 2);
    EXPECT_EXIT(iarray(1, 64, 1, LONG_MAX / 2, 1, 1), ExitedWithCode(1),
                "^Numerical Recipes run-time error...\nallocation failure 2 in d3tensor\\(\\)\n");
}

TEST(LegacyToolkit, ScalarsAndBits) {
    EXPECT_TRUE(power(1.5, 3) == 3.375 && ipower(-2, 31) == INT_MIN && ipower(2, 32) == 0);
    EXPECT_NEAR(dennorm(0.0, 0.0, 1.0), 0.398942280407133977, 1e-15) << "2 pi to ten digits";
    bitset set(9), longer(10);
    for (bitset* each : {&set, &longer}) each->SetbitOne(8);
    longer.SetbitOne(9);
    set.SetbitOne(9);  // outside
    EXPECT_TRUE(set.SizeofSet() == 1 && longer.SizeofSet() == 2 && longer[9] != 0);
    EXPECT_TRUE(set.ifincludein(&set) == 1 && set.ifincludein(&longer) == 0);
}

}  // namespace
}  // namespace vort::testing
