#include "numeric/binomial_interval.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vort::testing {
namespace {

// Sums of binomial probabilities solved for 2.5 % in double precision; in closed form where none or
// all succeed.
TEST(ClopperPearson, KnownValues) {
    struct Case {
        int successes, trials;
        double low, high;
    };
    for (const Case& c :
         {Case{3, 200, 0.0031041076216, 0.0432082819177},
          Case{50, 1000, 0.0373353976047, 0.0653904879155},
          Case{1, 7, 0.0036102968619, 0.5787231970432},
          Case{500, 999, 0.4690322624146, 0.5319657811910},
          Case{0, 20, 0, 1 - std::pow(0.025, 1.0 / 20)}, Case{20, 20, std::pow(0.025, 1.0 / 20), 1},
          Case{0, 1000000, 0, 1 - std::pow(0.025, 1e-6)}}) {
        const Interval interval = clopper_pearson(c.successes, c.trials);
        EXPECT_NEAR(interval.low, c.low, 1e-10) << c.successes << " of " << c.trials;
        EXPECT_NEAR(interval.high, c.high, 1e-10) << c.successes << " of " << c.trials;
    }
}

}  // namespace
}  // namespace vort::testing
