// The ends are quantiles of beta distributions: at least b of n are seen with the probability
// I_p(b, n - b + 1), a regularised incomplete beta function, which rises with p, so that halving an
// interval finds where it is 2.5 %. The function is computed by its continued fraction (NIST
// Digital Library of Mathematical Functions, 8.17.22), which converges within some sqrt(n) terms on
// the side of the mean where it is used. Example: 3 of 200 give 0.00310 to 0.04321.
#include "numeric/binomial_interval.h"

#include <cmath>

namespace vort {

namespace {

constexpr double kOneSide = 0.025;
constexpr int kHalvings = 60;

// 1 / (1 + d1 / (1 + d2 / (1 + ...))) by the method of Lentz.
double beta_fraction(double a, double b, double x) {
    constexpr int kMostTerms = 100000;
    constexpr double kTiny = 1e-300;
    constexpr double kEnough = 1e-15;
    const auto away_from_zero = [](double value) {
        return std::abs(value) < kTiny ? kTiny : value;
    };
    double c = 1;
    double d = 1 / away_from_zero(1 - (a + b) * x / (a + 1));
    double fraction = d;
    const auto step = [&](double term) {
        d = 1 / away_from_zero(1 + term * d);
        c = away_from_zero(1 + term / c);
        fraction *= d * c;
        return std::abs(d * c - 1);
    };
    for (int m = 1; m < kMostTerms; ++m) {
        step(m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)));
        if (step(-(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))) < kEnough) break;
    }
    return fraction;
}

double incomplete_beta(double a, double b, double x) {
    if (x <= 0) return 0;
    if (x >= 1) return 1;
    const double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                  a * std::log(x) + b * std::log1p(-x));
    if (x < (a + 1) / (a + b + 2)) return front * beta_fraction(a, b, x) / a;
    return 1 - front * beta_fraction(b, a, 1 - x) / b;
}

// Where a rising function of a proportion reaches `level`.
template <typename Function>
double where(Function function, double level) {
    double low = 0;
    double high = 1;
    for (int halving = 0; halving < kHalvings; ++halving) {
        const double middle = (low + high) / 2;
        (function(middle) < level ? low : high) = middle;
    }
    return (low + high) / 2;
}

}  // namespace

Interval clopper_pearson(int successes, int trials) {
    const double b = successes;
    const double n = trials;
    const auto at_least = [&](double p) { return incomplete_beta(b, n - b + 1, p); };
    const auto more = [&](double p) { return incomplete_beta(b + 1, n - b, p); };
    return {successes == 0 ? 0.0 : where(at_least, kOneSide),
            successes == trials ? 1.0 : where(more, 1 - kOneSide)};
}

}  // namespace vort
