// Many upper tails at once against one at a time, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>
#include <vector>

#include "numeric/chi_square_lanes.h"
#include "numeric/distributions.h"
#include "support/instruction_sets.h"

namespace vort {
namespace {

TEST(ChiSquareQueue, GivesTheUpperTailsOfThePlainForm) {
    std::mt19937 random(20);
    std::uniform_real_distribution<double> exponent(-12, 8);
    for (const Instructions instructions : vort::testing::instruction_sets()) {
        ChiSquareQueue queue(instructions, 100);
        for (int size = 0; size < 40; ++size) {
            // Around the point where the series hands over to the continued fraction, and anywhere.
            std::vector<std::pair<int, double>> asked = {
                {1, 2.9999999999999996}, {1, 3.0}, {1, 3.0000000000000004}, {1, 4.0}};
            for (int k = 0; k < size; ++k) {
                asked.emplace_back(1 + k % 2, k % 10 == 0 ? 0 : std::exp2(exponent(random)));
            }
            for (std::size_t k = 0; k < asked.size(); ++k) {
                queue.add(asked[k].first, asked[k].second, static_cast<int>(k));
                queue.add_if(false, asked[k].first, asked[k].second, -1);
            }
            std::vector<int> received(asked.size());
            const auto receive = [&](int tag, double pvalue) {
                const auto [df, statistic] = asked.at(tag);
                EXPECT_EQ(pvalue, 1 - lower_tail_chi_square(df, statistic).value) << statistic;
                ++received[tag];
            };
            queue.take_eights(receive);
            queue.take(receive);
            EXPECT_EQ(received, std::vector<int>(asked.size(), 1));
        }
    }
}

}  // namespace
}  // namespace vort
