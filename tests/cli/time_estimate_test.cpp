#include "cli/time_estimate.h"

#include <gtest/gtest.h>

namespace vort::testing {
namespace {

// A run of two stages whose pace is not what was expected.
TEST(TimeEstimate, IsWithinAFifthOnceATenthIsDone) {
    const RunSize size{
        .individuals = 547, .markers = 541325, .data_sets = 101, .best_m = 100, .max_retain = 10};
    for (const double slowness : {0.3, 1.0, 4.0}) {
        for (const double model : {0.6, 1.0, 1.4}) {
            const double screening = 0.0347 * slowness;  // seconds a data set
            const double modelling = 0.0097 * slowness * model;
            const double whole = size.data_sets * (screening + modelling);
            TimeEstimate estimate(size);
            for (double t = whole / 100; t < whole; t += whole / 100) {
                const double screened = t / screening;
                const bool first = screened < size.data_sets;
                estimate.update(first ? Stage::kScreen : Stage::kModel,
                                first ? screened : (t - size.data_sets * screening) / modelling, t);
                if (estimate.done() < 0.1) continue;
                EXPECT_NEAR((t + estimate.remaining(t)) / whole, 1, 0.2)
                    << slowness << ' ' << model << " at " << t / whole;
            }
            EXPECT_GT(estimate.done(), 0.9);
        }
    }
}

}  // namespace
}  // namespace vort::testing
