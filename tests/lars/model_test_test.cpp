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
double tail_1(double statistic) {
    return std::erfc(std::sqrt(statistic / 2));
}
double tail_2(double statistic) {
    return std::exp(-statistic / 2);
}
constexpr double kTolerance = 1e-6;

const Columns kX = {{0, 0, 1, 1, 0, 1}, {0, 1, 0, 1, 0, 0}, {5, 5, 5, 5, 5, 5}};
const std::vector<double> kY = {0, 1, 1, 1, 0, 0};

TEST(ScoreTest, OneColumnIsTheSquaredCorrelation) {
    // Around the means: products 0.5, squares 1.5 and 1.5; n r^2 = 6 / 9.
    EXPECT_NEAR(p_value(kX, kY, {2, 0, 0}), tail_1(6.0 / 9), kTolerance);
    // Products 1, squares 4/3 and 3/2; n r^2 = 6 / 2.
    EXPECT_NEAR(p_value(kX, kY, {0, -3, 0}), tail_1(3.0), kTolerance);
}

TEST(ScoreTest, TwoCorrelatedColumns) {
    // sigma2 = 1/4, U = (1/2, 1), S = sigma2 (3/2 0; 0 4/3): the columns are uncorrelated here.
    EXPECT_NEAR(p_value(kX, kY, {1, 1, 0}), tail_2(4 * (0.25 / 1.5 + 0.75)), kTolerance);
    // With the first column replaced by its sum with the second they span the same space.
    Columns x = kX;
    for (std::size_t i = 0; i < 6; ++i) x[0][i] += x[1][i];
    EXPECT_NEAR(p_value(x, kY, {1, 1, 0}), tail_2(4 * (0.25 / 1.5 + 0.75)), kTolerance);
}

TEST(ScoreTest, ScaleAndOriginDoNotMatter) {
    Columns x = kX;
    std::vector<double> y = kY;
    for (double& value : x[1]) value = 100 - 7 * value;
    for (double& value : y) value = 3 * value - 40;
    EXPECT_NEAR(p_value(x, y, {0, 1, 0}), tail_1(3.0), kTolerance);
}

TEST(ScoreTest, NothingToTestIsOneHalf) {
    const struct {
        const char* name;
        std::vector<double> beta;
        std::vector<double> y;
    } cases[] = {
        {"no coefficient", {0, 0, 0}, kY},
        {"at the tolerance", {1e-6, -1e-6, 0}, kY},
        {"constant column", {0, 0, 1}, kY},
        {"constant response", {1, 1, 0}, {4, 4, 4, 4, 4, 4}},
    };
    for (const auto& c : cases) EXPECT_EQ(p_value(kX, c.y, c.beta), 0.5) << c.name;
    EXPECT_NEAR(p_value(kX, kY, {0, 1.1e-6, 0}), tail_1(3.0), kTolerance) << "above the tolerance";
}

TEST(BinomialTest, NormalApproximation) {
    ModelTest default_size;
    EXPECT_NEAR(default_size.run(400, 0.01), 0.5, kTolerance);
    EXPECT_DOUBLE_EQ(default_size.rate(), 0.99);
    ModelTest hundred(5, 20, 1);
    // Two standard deviations of 5 on either side of 50.
    EXPECT_NEAR(hundred.run(60, 0.5), 0.0227501319, kTolerance);
    EXPECT_NEAR(hundred.run(40, 0.5), 0.9772498681, kTolerance);
    EXPECT_DOUBLE_EQ(hundred.rate(), 0.6);
}

}  // namespace
}  // namespace vort
