// The area under the curve, against worked values and the sums over all pairs.
#include "numeric/roc_area.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace vort::testing {
namespace {

std::vector<double> rated(const std::vector<int>& times) {
    std::vector<double> scores;
    for (std::size_t rating = 0; rating < times.size(); ++rating) {
        scores.insert(scores.end(), static_cast<std::size_t>(times[rating]), double(rating));
    }
    return scores;
}

// Ratings of 109 images by one reader (J. A. Hanley and B. J. McNeil, Radiology 1982; 143, 29-36,
// table I), whose area is 0.893; standard error and interval as Stata's manual prints them for
// these data (roctab, by DeLong's formula).
TEST(RocArea, WorkedExample) {
    const RocArea roc = roc_area(rated({3, 2, 2, 11, 33}), rated({33, 6, 6, 11, 2}));
    EXPECT_NEAR(roc.area, 0.8932, 5e-5);
    EXPECT_NEAR(roc.standard_error, 0.0307, 5e-5);
    EXPECT_NEAR(roc.interval.low, 0.83295, 5e-6);
    EXPECT_NEAR(roc.interval.high, 0.95339, 5e-6);
}

// By hand: of the pairs one is won, one even.
TEST(RocArea, WhatCannotBeTold) {
    EXPECT_TRUE(std::isnan(roc_area({}, rated({1})).area));
    EXPECT_EQ(roc_area(rated({0, 1}), rated({1, 1})).area, 0.75);
    EXPECT_TRUE(std::isnan(roc_area(rated({0, 1}), rated({1, 1})).standard_error));
    for (const auto& [upper, area] : {std::pair{rated({0, 3}), 1.0}, {rated({3}), 0.5}}) {
        const RocArea roc = roc_area(upper, rated({4}));
        EXPECT_EQ(roc.area, area);
        EXPECT_EQ(roc.standard_error, 0);
        EXPECT_TRUE(std::isnan(roc.interval.low));
    }
}

struct PlainRoc {
    double area, variance;
};

// DeLong's structural components as they are defined.
PlainRoc plain_roc(const std::vector<double>& upper, const std::vector<double>& lower) {
    const auto win = [](double x, double y) { return x > y ? 1.0 : x == y ? 0.5 : 0.0; };
    std::vector<double> of_upper(upper.size()), of_lower(lower.size());
    double area = 0;
    for (std::size_t i = 0; i < upper.size(); ++i) {
        for (std::size_t j = 0; j < lower.size(); ++j) {
            const double psi = win(upper[i], lower[j]);
            of_upper[i] += psi / double(lower.size());
            of_lower[j] += psi / double(upper.size());
            area += psi / double(upper.size()) / double(lower.size());
        }
    }
    double variance = 0;
    for (const auto& part : {of_upper, of_lower}) {
        double squares = 0;
        for (const double v : part) squares += (v - area) * (v - area);
        variance += squares / double(part.size() - 1) / double(part.size());
    }
    return {area, variance};
}

TEST(RocArea, IsTheSumOverAllPairs) {
    const unsigned seed = 11;
    RecordProperty("seed", seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 200; ++round) {
        const int values = round % 2 == 0 ? 5 : 1000;  // few of them: many ties
        const auto draw = [&](std::size_t count, int shift) {
            std::vector<double> scores(count);
            for (double& score : scores) {
                score = 0.1 * (int(random() % unsigned(values)) + shift);
            }
            return scores;
        };
        const auto upper = draw(2 + random() % 60, round % 3);
        const auto lower = draw(2 + random() % 60, 0);
        const RocArea roc = roc_area(upper, lower);
        const PlainRoc plain = plain_roc(upper, lower);
        EXPECT_NEAR(roc.area, plain.area, 1e-12) << "seed " << seed << ", round " << round;
        EXPECT_NEAR(roc.standard_error, std::sqrt(plain.variance), 1e-12) << "round " << round;
        if (!(roc.standard_error > 1e-9)) continue;
        EXPECT_NEAR(roc.interval.low,
                    std::max(0.0, plain.area - 1.959964 * std::sqrt(plain.variance)), 1e-6);
        EXPECT_LE(roc.interval.high, 1);
    }
}

}  // namespace
}  // namespace vort::testing
