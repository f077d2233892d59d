// The exact interval of a proportion.
#pragma once

namespace vort {

struct Interval {
    double low;
    double high;
};

// The 95 % interval of Clopper & Pearson (Biometrika 1934; 26, 404-413) for a proportion of which
// `successes` in `trials` were seen, 0 <= successes <= trials and trials > 0: the proportions for
// which neither as many nor as few would have had a probability below 2.5 %. Accurate to 1e-12.
Interval clopper_pearson(int successes, int trials);

}  // namespace vort
