#include "study/hardy_weinberg.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vort::testing {
namespace {

// Each number of heterozygotes from its factorials.
double plain_p(int heterozygotes, int homozygotes, int others) {
    const int n = heterozygotes + homozygotes + others;
    const int alleles = 2 * homozygotes + heterozygotes;
    const auto likelihood = [&](int h) {
        const double a = (alleles - h) / 2, b = n - h - a;
        if (b < 0) return 0.0;
        const double all = std::lgamma(n + 1.0) + std::lgamma(alleles + 1.0) +
                           std::lgamma(2.0 * n - alleles + 1) - std::lgamma(2.0 * n + 1);
        return std::exp(all + h * std::log(2.0) - std::lgamma(h + 1.0) - std::lgamma(a + 1) -
                        std::lgamma(b + 1));
    };
    double p = 0;
    for (int h = alleles % 2; h <= alleles; h += 2) {
        if (likelihood(h) <= likelihood(heterozygotes) * (1 + 1e-8)) p += likelihood(h);
    }
    return p;
}

TEST(HardyWeinberg, IsTheSumOfWhatIsNoMoreLikely) {
    EXPECT_EQ(hardy_weinberg_p(0, 0, 0), 1);
    EXPECT_EQ(hardy_weinberg_p(0, 0, 9), 1);
    EXPECT_NEAR(hardy_weinberg_p(0, 1, 1), 1.0 / 3, 1e-15);  // two of four alleles, by hand
    EXPECT_NEAR(hardy_weinberg_p(2, 0, 0), 1, 1e-15);
    // Too rare for a double, where single likelihoods are.
    EXPECT_EQ(hardy_weinberg_p(0, 5000, 5000), 0);
    std::mt19937 random(20260);
    for (int k = 0; k < 400; ++k) {
        const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
        const unsigned size = k < 200 ? 12 : 900;
        const int h = below(size), a = below(size), b = below(size);
        const double plain = plain_p(h, a, b);
        EXPECT_NEAR(hardy_weinberg_p(h, a, b), plain, 1e-9 * plain)
            << "seed 20260: " << h << ' ' << a << ' ' << b;
    }
}

}  // namespace
}  // namespace vort::testing
