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

    [[gnu::always_inline]] static Doubles away_from_zero(const Doubles& x) {
        return select(magnitude(x) < kSmallest, Doubles{} + kSmallest, x);
    }

    [[gnu::always_inline]] static bool any(const Mask (&going)[kRegisters]) {
        Mask together = going[0];
        for (int v = 1; v < kRegisters; ++v) together |= going[v];
        return any_of_lanes(together) != 0;
    }
};

// exp(-x) x^a / Gamma(a), by the C library.
[[gnu::always_inline]] inline double leading_factor(double a, double x, double gln) {
    return std::exp(-x + a * std::log(x) - gln);
}

// The sum over n of x^n / (a (a + 1) .. (a + n)).
template <Instructions kInstructions>
class Series {
  public:
    using V = Vectors<kInstructions>;

    Series(double a, const double* x) : denominator_(a) {
        V::load(x, point_);
        for (int v = 0; v < V::kRegisters; ++v) value[v] = term_[v] = typename V::Doubles{} + 1 / a;
    }

    [[gnu::always_inline]] void add_term(typename V::Mask (&going)[V::kRegisters]) {
        denominator_ += 1.0;
        for (int v = 0; v < V::kRegisters; ++v) {
            term_[v] *= point_[v] / denominator_;
            value[v] = select(going[v], value[v] + term_[v], value[v]);
            going[v] &= ~(magnitude(term_[v]) < magnitude(value[v]) * kAccuracy);
        }
    }

    static double upper_tail(double value, double leading) { return 1 - value * leading; }

    typename V::Doubles value[V::kRegisters];

  private:
    double denominator_;
    typename V::Doubles point_[V::kRegisters];
    typename V::Doubles term_[V::kRegisters];
};

// The continued fraction of the upper tail, by Lentz's method.
template <Instructions kInstructions>
class Fraction {
  public:
    using V = Vectors<kInstructions>;

    Fraction(double a, const double* x) : a_(a) {
        V::load(x, b_);
        for (int v = 0; v < V::kRegisters; ++v) {
            b_[v] = b_[v] + 1.0 - a;
            c_[v] = typename V::Doubles{} + 1.0 / kSmallest;
            d_[v] = 1.0 / b_[v];
            value[v] = d_[v];
        }
    }

    [[gnu::always_inline]] void add_term(typename V::Mask (&going)[V::kRegisters]) {
        i_ += 1.0;
        const double an = -i_ * (i_ - a_);
        for (int v = 0; v < V::kRegisters; ++v) {
            b_[v] += 2.0;
            d_[v] = 1.0 / V::away_from_zero(an * d_[v] + b_[v]);
            c_[v] = V::away_from_zero(b_[v] + an / c_[v]);
            const typename V::Doubles factor = d_[v] * c_[v];
            value[v] = select(going[v], value[v] * factor, value[v]);
            going[v] &= ~(magnitude(factor - 1.0) < kAccuracy);
        }
    }

    static double upper_tail(double value, double leading) { return 1 - (1.0 - leading * value); }

    typename V::Doubles value[V::kRegisters];

  private:
    double a_;
    double i_ = 0;
    typename V::Doubles b_[V::kRegisters];
    typename V::Doubles c_[V::kRegisters];
    typename V::Doubles d_[V::kRegisters];
};

template <Instructions kInstructions, typename Expansion>
void upper_tails(double a, double gln, const double* x, int size, double* tail) {
    using V = Vectors<kInstructions>;
    for (int first = 0; first < size; first += kStatisticsAtOnce) {
        Expansion expansion(a, x + first);
        typename V::Mask going[V::kRegisters];
        for (auto& lanes : going) lanes = ~typename V::Mask{};
        for (int n = 0; n < kMaxTerms && V::any(going); n += kTermsBetweenLooks) {
            for (int term = 0; term < kTermsBetweenLooks; ++term) expansion.add_term(going);
        }
        double value[kStatisticsAtOnce];
        std::int64_t goes_on[kStatisticsAtOnce];
        std::memcpy(value, expansion.value, sizeof value);
        std::memcpy(goes_on, going, sizeof goes_on);
        for (int l = 0; l < kStatisticsAtOnce; ++l) {
            const double leading = leading_factor(a, x[first + l], gln);
            tail[first + l] =
                goes_on[l] != 0 ? kNotConverged : Expansion::upper_tail(value[l], leading);
        }
    }
}

}  // namespace chi_square

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::series(double a, double gln, const double* x, int size,
                                            double* tail) {
    chi_square::upper_tails<kInstructions, chi_square::Series<kInstructions>>(a, gln, x, size,
                                                                              tail);
}

template <Instructions kInstructions>
void ChiSquareKernel<kInstructions>::fraction(double a, double gln, const double* x, int size,
                                              double* tail) {
    chi_square::upper_tails<kInstructions, chi_square::Fraction<kInstructions>>(a, gln, x, size,
                                                                                tail);
}

}  // namespace vort
