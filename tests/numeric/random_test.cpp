#include "numeric/random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <vector>

#include "numeric/deviates.h"

namespace vort {
namespace {

using ::testing::ElementsAre;

// Each test starts from the fixed seeds, so none of them depends on another.
class Random : public ::testing::Test {
  protected:
    void SetUp() override { init_rand1(); }

    // How many numbers have been drawn since init_rand1(), up to 100; starts again from there.
    static int draws() {
        const int x = RX, y = RY, z = RZ;
        int count = 0;
        init_rand1();
        for (; count < 100 && (RX != x || RY != y || RZ != z); ++count) rand1();
        init_rand1();
        return count;
    }
};

// The fractions computed with whole numbers and rounded once.
TEST_F(Random, StartsWithKnownNumbers) {
    for (const double expected : {0.050705517581820986, 0.6596366254125381, 0.9607424544289321,
                                  0.8329544915584348, 0.5685944625394854}) {
        EXPECT_DOUBLE_EQ(rand1(), expected);
    }
    for (int i = 5; i < 999; ++i) rand1();
    EXPECT_EQ(rand1(), 0.13549605382579522);
    EXPECT_THAT((std::vector{RX, RY, RZ}), ElementsAre(9292, 8811, 16308));
    init_rand1();
    EXPECT_THAT((std::vector{RX, RY, RZ}), ElementsAre(1, 3, 5));
    std::srand(5);
    const int first = std::rand();
    std::srand(5);
    EXPECT_EQ(rand2(), first / 2147483647.0) << "the library's";
}

std::vector<int> random_order(int n) {
    std::vector<int> out(n + 2, -7);
    randomsort(n, out.data());
    EXPECT_TRUE(out.front() == -7 && out.back() == -7);
    return {out.begin() + 1, out.end() - 1};
}

// Drawn from a list by hand: 0.0507 * 10 takes place 1, 0.6596 * 9 place 6 of what is left, ...
TEST_F(Random, OrdersDrawWithoutReplacement) {
    EXPECT_THAT(random_order(10), ElementsAre(1, 7, 10, 8, 5, 9, 3, 4, 2, 6));
    EXPECT_THAT(random_order(10), ElementsAre(8, 6, 9, 2, 1, 5, 4, 3, 7, 10));
    EXPECT_THAT(random_order(1), ElementsAre(1));
    EXPECT_TRUE(random_order(0).empty());
    EXPECT_EQ(draws(), 21);
    std::vector<short> y = {10, 20, 30, 40, 50, 60, 70, 80, 90, 100};
    EXPECT_EQ(permutation1(y.data(), 10), 0);
    EXPECT_THAT(y, ElementsAre(10, 70, 100, 80, 50, 90, 30, 40, 20, 60));
}

// A separate computation. The method of the gamma changes at shape 6, whose second deviate takes
// one round of three. The Poisson ones multiply 0.0507 | 0.6596, 0.9607, 0.8330, 0.5686 until the
// product is below exp(-0.5) = 0.607, or exp(-1.5) = 0.22.
TEST_F(Random, DeviatesStartWithKnownNumbers) {
    EXPECT_NEAR(nrandom(0.0, 1.0), -0.41067583453910017, 1e-15);
    EXPECT_NEAR(nrandom(5.0, 2.0), 5.0 + 2.0 * 0.08346656158964563, 1e-14);
    EXPECT_NEAR(nrandom(0.0, 1.0), -1.071200020774139, 1e-14);
    EXPECT_THAT((std::vector{RX, RY, RZ}), ElementsAre(20829, 4920, 15476)) << "pairs are dropped";
    init_rand1();
    EXPECT_NEAR(llgamma(5, 2.0), 2.0925998508333974, 1e-14);
    EXPECT_EQ(draws(), 5);
    EXPECT_NEAR(llgamma(6, 2.0), 2.77312668008298, 1e-14);
    EXPECT_NEAR(llgamma(6, 2.0), 1.3982856263254853, 1e-14);
    EXPECT_EQ(draws(), 9);
    EXPECT_TRUE(rpoisson(0.5, 9) == 0 && rpoisson(0.5, 9) == 2);
    EXPECT_EQ(draws(), 4);
    EXPECT_TRUE(rpoisson(1.5, 3) == 0 && rpoisson(1.5, 3) == 3 && rpoisson(50.0, -1) == -1);
    EXPECT_EQ(draws(), 5);

    EXPECT_EXIT((std::cout.rdbuf(std::cerr.rdbuf()), chisq(0)), ::testing::ExitedWithCode(1),
                "The freedom of chi-square must be positive integer!\n");
    const double chi_square[] = {chisq(2), chisq(6)};
    EXPECT_NEAR(chi_square[0], 0.1686546410744 + 0.0069666669036, 1e-12) << "of the normals above";
    init_rand1();
    int alpha[] = {-7, 1, 3};
    std::vector<double> p(4, -7.0);
    Dirichlet(p.data(), alpha, 2);
    const double sum = chi_square[0] + chi_square[1];
    EXPECT_THAT(p, ElementsAre(-7.0, chi_square[0] / sum, chi_square[1] / sum, -7.0));

    // Of five numbers one is above the last bound; one that equals a bound, but not the first, is
    // within it.
    init_rand1();
    p = {-7.0, 0.1, 0.5, 0.3};
    std::vector<int> counts(5, -7);
    multinomial(5, p.data(), counts.data(), 3);
    EXPECT_THAT(counts, ElementsAre(-7, 1, 1, 2, -7));
    init_rand1();
    p[1] = 0.050705517581820986;
    multinomial(1, p.data(), counts.data(), 3);
    EXPECT_THAT(counts, ElementsAre(-7, 0, 0, 0, -7));
    init_rand1();
    p = {-7.0, 0.0, 0.050705517581820986, 0.5};
    multinomial(1, p.data(), counts.data(), 3);
    EXPECT_THAT(counts, ElementsAre(-7, 0, 1, 0, -7));
}

}  // namespace
}  // namespace vort
