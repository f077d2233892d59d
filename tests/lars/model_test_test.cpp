#include "lars/model_test.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace vort {
namespace {

using Columns = std::vector<std::vector<double>>;

double p_value(const Columns& x, const std::vector<double>& y, const std::vector<double>& beta) {
    std::vector<const double*> pointers;
    for (const auto& column : x) pointers.push_back(column.data());
    return ModelTest().run1(static_cast<int>(y.size()), static_cast<int>(x.size()), beta.data(),
                            y.data(), pointers.data());
}

// Upper tails of the chi-square distribution in closed form; the toolkit's is good to 3e-7.
const double kTailOfThree = std::erfc(std::sqrt(3.0 / 2));
const double kTailOfTwo = std::exp(-4 * (0.25 / 1.5 + 0.75) / 2);
constexpr double kTolerance = 1e-6;

const Columns kX = {{0, 0, 1, 1, 0, 1}, {0, 1, 0, 1, 0, 0}, {5, 5, 5, 5, 5, 5}};
const std::vector<double> kY = {0, 1, 1, 1, 0, 0};

TEST(ScoreTest, WorkedByHand) {
    // Around the means: products 0.5, squares 1.5 and 1.5; n r^2 = 6 / 9.
    EXPECT_NEAR(p_value(kX, kY, {2, 0, 0}), std::erfc(std::sqrt(6.0 / 9 / 2)), kTolerance);
    // Products 1, squares 4/3 and 3/2; n r^2 = 6 / 2.
    EXPECT_NEAR(p_value(kX, kY, {0, -3, 0}), kTailOfThree, kTolerance);
    EXPECT_NEAR(p_value(kX, kY, {0, 1.1e-6, 0}), kTailOfThree, kTolerance) << "any coefficient";
    // sigma2 = 1/4, U = (1/2, 1), S = sigma2 (3/2 0; 0 4/3): the columns are uncorrelated here.
    EXPECT_NEAR(p_value(kX, kY, {1, 1, 0}), kTailOfTwo, kTolerance);
}

TEST(ScoreTest, OnlyTheSpaceMatters) {
    Columns x = kX;
    std::vector<double> y = kY;
    for (std::size_t i = 0; i < 6; ++i) x[0][i] += 100 - 7 * x[1][i];
    for (double& value : y) value = 3 * value - 40;
    EXPECT_NEAR(p_value(x, y, {1, 1, 0}), kTailOfTwo, kTolerance);
}

TEST(ScoreTest, NothingToTestIsOneHalf) {
    EXPECT_EQ(p_value(kX, kY, {1e-6, -1e-6, 0}), 0.5) << "no column";
    EXPECT_EQ(p_value(kX, kY, {0, 0, 1}), 0.5) << "constant column";
    EXPECT_EQ(p_value(kX, std::vector<double>(6, 4.0), {1, 1, 0}), 0.5) << "constant response";
}

TEST(BinomialTest, NormalApproximation) {
    EXPECT_NEAR(ModelTest().run(400, 0.01), 0.5, kTolerance);
    ModelTest hundred(5, 20, 1);
    // Two standard deviations of 5 on either side of 50.
    EXPECT_NEAR(hundred.run(60, 0.5), 0.0227501319, kTolerance);
    EXPECT_NEAR(hundred.run(40, 0.5), 0.9772498681, kTolerance);
    EXPECT_DOUBLE_EQ(hundred.rate(), 0.6);
}

}  // namespace
}  // namespace vort
