// The body of ChiSquareKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cmath>
#include <cstring>

#include "numeric/chi_square_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace chi_square {

constexpr int kMaxTerms = 200;
constexpr double kAccuracy = 3e-7;
constexpr double kSmallest = 1e-30;
constexpr double kNotConverged = -1.0;

[[gnu::always_inline]] inline Lanes load(const double* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

[[gnu::always_inline]] inline Lanes magnitude(const Lanes& x) {
    return select(x < 0.0, -x, x);
}

[[gnu::always_inline]] inline Lanes away_from_zero(const Lanes& x) {
    return select(magnitude(x) < kSmallest, Lanes{} + kSmallest, x);
}

[[gnu::always_inline]] inline bool any(const LaneMask& mask) {
    std::int64_t bits = 0;
    for (int l = 0; l < kLanes; ++l) bits |= mask[l];
    return bits != 0;
}

}  // namespace chi_square

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::series(const double* a, const double* x, const double* gln,
                                            int size, double* tail) {
    using namespace chi_square;
    for (int first = 0; first < size; first += kLanes) {
        const Lanes point = load(x + first);
        Lanes ap = load(a + first);
        Lanes del = 1.0 / ap;
        Lanes sum = del;
        LaneMask going = ap == ap;
        for (int n = 1; n <= kMaxTerms && any(going); ++n) {
            ap += 1.0;
            del *= point / ap;
            sum = select(going, sum + del, sum);
            going &= ~(magnitude(del) < magnitude(sum) * kAccuracy);
        }
        for (int l = 0; l < kLanes; ++l) {
            const int k = first + l;
            const double lower = sum[l] * std::exp(-x[k] + a[k] * std::log(x[k]) - gln[k]);
            tail[k] = going[l] != 0 ? kNotConverged : 1 - lower;
        }
    }
}

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::fraction(const double* a, const double* x, const double* gln,
                                              int size, double* tail) {
    using namespace chi_square;
    for (int first = 0; first < size; first += kLanes) {
        const Lanes shape = load(a + first);
        Lanes b = load(x + first) + 1.0 - shape;
        Lanes c = Lanes{} + 1.0 / kSmallest;
        Lanes d = 1.0 / b;
        Lanes h = d;
        LaneMask going = shape == shape;
        for (int i = 1; i <= kMaxTerms && any(going); ++i) {
            const Lanes an = -i * (i - shape);
            b += 2.0;
            d = away_from_zero(an * d + b);
            c = away_from_zero(b + an / c);
            d = 1.0 / d;
            const Lanes del = d * c;
            h = select(going, h * del, h);
            going &= ~(magnitude(del - 1.0) < kAccuracy);
        }
        for (int l = 0; l < kLanes; ++l) {
            const int k = first + l;
            const double upper = std::exp(-x[k] + a[k] * std::log(x[k]) - gln[k]) * h[l];
            tail[k] = going[l] != 0 ? kNotConverged : 1 - (1.0 - upper);
        }
    }
}

}  // namespace vort
