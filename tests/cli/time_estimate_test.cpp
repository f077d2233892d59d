#include "cli/time_estimate.h"

#include <gtest/gtest.h>

#include <array>

namespace vort::testing {
namespace {

// Stages whose pace is not what was expected, one after the other or in turns.
TEST(TimeEstimate, IsWithinAFifthOnceATenthIsDone) {
    const RunSize size{.individuals = 547, .markers = 541325, .best_m = 100, .max_retain = 10};
    const double data_sets = 101;
    const std::array<double, kStages> expected = expected_seconds(size);
    for (const double slowness : {0.3, 1.0, 4.0}) {
        for (const double model : {0.6, 1.0, 1.4}) {
            for (const bool turns : {false, true}) {
                std::array<double, kStages> pace = expected;
                for (double& seconds : pace) seconds *= slowness;
                pace[2] *= model;
                const double whole = data_sets * (pace[0] + pace[1] + pace[2]);
                TimeEstimate estimate(size, {data_sets, data_sets, data_sets});
                double now = 0;
                const int rounds = turns ? 20 : 1;
                for (int step = 1; step <= rounds * 3; ++step) {
                    const auto s = static_cast<std::size_t>((step - 1) % 3);
                    const int round = (step - 1) / 3;
                    for (int k = 1; k <= 20; ++k) {
                        const double share = (round + k / 20.0) / rounds;
                        now += data_sets * pace[s] / rounds / 20;
                        estimate.update(static_cast<Stage>(s), data_sets * share, now);
                        if (estimate.done() < 0.1) continue;
                        EXPECT_NEAR((now + estimate.remaining(now)) / whole, 1, 0.2)
                            << slowness << ' ' << model << " at " << now / whole;
                    }
                }
                EXPECT_GT(estimate.done(), 0.9);
            }
        }
    }
}

}  // namespace
}  // namespace vort::testing
