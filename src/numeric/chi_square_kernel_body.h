// The body of ChiSquareKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

#include "numeric/chi_square_kernel.h"
#include "numeric/lanes.h"

namespace vort {

namespace chi_square {

constexpr int kMaxTerms = 200;
// A look whether any lane goes on costs as much as a term, and a term too many changes nothing.
constexpr int kTermsBetweenLooks = 4;
static_assert(kMaxTerms % kTermsBetweenLooks == 0);

constexpr double kAccuracy = 3e-7;
constexpr double kSmallest = 1e-30;
constexpr double kNotConverged = -1.0;

// kStatisticsAtOnce doubles in registers of one kind; several registers hide how long a division
// takes.
template <Instructions kInstructions>
struct Vectors {
    using Doubles = typename Register<kInstructions>::Doubles;
    using Mask = typename Register<kInstructions>::Mask;
    static constexpr int kRegisters = kStatisticsAtOnce / Register<kInstructions>::kSize;

    [[gnu::always_inline]] static void load(const double* from, Doubles (&to)[kRegisters]) {
        std::memcpy(to, from, sizeof to);
    }

    [[gnu::always_inline]] static Doubles magnitude(const Doubles& x) {
        constexpr std::int64_t kAllButSign = 0x7FFFFFFFFFFFFFFF;
        return reinterpret_cast<Doubles>(reinterpret_cast<Mask>(x) & kAllButSign);
    }

    [[gnu::always_inline]] static Doubles away_from_zero(const Doubles& x) {
        return select(magnitude(x) < kSmallest, Doubles{} + kSmallest, x);
    }

    [[gnu::always_inline]] static bool any(const Mask (&going)[kRegisters]) {
        Mask together = going[0];
        for (int v = 1; v < kRegisters; ++v) together |= going[v];
        std::int64_t bits = 0;
        for (int l = 0; l < Register<kInstructions>::kSize; ++l) bits |= together[l];
        return bits != 0;
    }
};

// exp(-x) x^a / Gamma(a), by the C library.
inline double leading_factor(double a, double x, double gln) {
    return std::exp(-x + a * std::log(x) - gln);
}

}  // namespace chi_square

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::series(const double* a, const double* x, const double* gln,
                                            int size, double* tail) {
    using namespace chi_square;
    using V = Vectors<kInstructions>;
    constexpr int R = V::kRegisters;
    for (int first = 0; first < size; first += kStatisticsAtOnce) {
        typename V::Doubles point[R];
        typename V::Doubles ap[R];
        typename V::Doubles del[R];
        typename V::Doubles sum[R];
        typename V::Mask going[R];
        V::load(x + first, point);
        V::load(a + first, ap);
        for (int v = 0; v < R; ++v) {
            del[v] = 1.0 / ap[v];
            sum[v] = del[v];
            going[v] = ap[v] == ap[v];
        }
        for (int n = 0; n < kMaxTerms && V::any(going); n += kTermsBetweenLooks) {
            for (int term = 0; term < kTermsBetweenLooks; ++term) {
                for (int v = 0; v < R; ++v) {
                    ap[v] += 1.0;
                    del[v] *= point[v] / ap[v];
                    sum[v] = select(going[v], sum[v] + del[v], sum[v]);
                    going[v] &= ~(V::magnitude(del[v]) < V::magnitude(sum[v]) * kAccuracy);
                }
            }
        }
        double sums[kStatisticsAtOnce];
        std::int64_t goes_on[kStatisticsAtOnce];
        std::memcpy(sums, sum, sizeof sums);
        std::memcpy(goes_on, going, sizeof goes_on);
        for (int l = 0; l < kStatisticsAtOnce; ++l) {
            const int k = first + l;
            const double lower = sums[l] * leading_factor(a[k], x[k], gln[k]);
            tail[k] = goes_on[l] != 0 ? kNotConverged : 1 - lower;
        }
    }
}

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::fraction(const double* a, const double* x, const double* gln,
                                              int size, double* tail) {
    using namespace chi_square;
    using V = Vectors<kInstructions>;
    constexpr int R = V::kRegisters;
    for (int first = 0; first < size; first += kStatisticsAtOnce) {
        typename V::Doubles shape[R];
        typename V::Doubles b[R];
        typename V::Doubles c[R];
        typename V::Doubles d[R];
        typename V::Doubles h[R];
        typename V::Mask going[R];
        V::load(a + first, shape);
        V::load(x + first, b);
        for (int v = 0; v < R; ++v) {
            b[v] = b[v] + 1.0 - shape[v];
            c[v] = typename V::Doubles{} + 1.0 / kSmallest;
            d[v] = 1.0 / b[v];
            h[v] = d[v];
            going[v] = b[v] == b[v];
        }
        double i = 0;
        for (int n = 0; n < kMaxTerms && V::any(going); n += kTermsBetweenLooks) {
            for (int term = 0; term < kTermsBetweenLooks; ++term) {
                i += 1.0;
                for (int v = 0; v < R; ++v) {
                    const typename V::Doubles an = -i * (i - shape[v]);
                    b[v] += 2.0;
                    d[v] = V::away_from_zero(an * d[v] + b[v]);
                    c[v] = V::away_from_zero(b[v] + an / c[v]);
                    d[v] = 1.0 / d[v];
                    const typename V::Doubles del = d[v] * c[v];
                    h[v] = select(going[v], h[v] * del, h[v]);
                    going[v] &= ~(V::magnitude(del - 1.0) < kAccuracy);
                }
            }
        }
        double factor[kStatisticsAtOnce];
        std::int64_t goes_on[kStatisticsAtOnce];
        std::memcpy(factor, h, sizeof factor);
        std::memcpy(goes_on, going, sizeof goes_on);
        for (int l = 0; l < kStatisticsAtOnce; ++l) {
            const int k = first + l;
            const double upper = leading_factor(a[k], x[k], gln[k]) * factor[l];
            tail[k] = goes_on[l] != 0 ? kNotConverged : 1 - (1.0 - upper);
        }
    }
}

}  // namespace vort
