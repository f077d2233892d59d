// The uniform generator, as a value.
//
// Three multiplicative congruential generators are added modulo 1, which multiplies their periods
// (B. A. Wichmann and I. D. Hill, Applied Statistics 31, 1982, pp. 188-190; the second modulus is
// not the published one, docs/method.md, section 11).
//
// 30309 = 3 * 10103 is no prime, but no part ever becomes a whole number: each multiplier is
// invertible modulo its modulus, and the first state has no multiple of the prime moduli and none
// of 10103. The exact sum is therefore no whole number either; it is a multiple of
// 1 / (30269 * 10103 * 30323), about 1e-13, and rounding to double cannot bridge such a distance.
// So a number is below 1, and n times it, cut to an int, is below n.
//
// Two shortcuts give the very numbers that single draws give. A multiplier's n-th power goes n
// draws ahead at once, so orders that are drawn one after the other can be drawn side by side:
//
//     const Generator::Skip order(n);        // n draws, log2(n) steps once
//     Generator second = first;
//     second.skip(order);                    // three multiplications
//
// And each part runs through a cycle of at most 30322 states, so its quotients (x / 30269.0 and so
// on) are tabulated in the order in which they come. A stretch of draws is then the sum of three
// stretches of tables, modulo 1: no divisions, no waiting of one draw for the one before. The
// tables (three of a quarter of a megabyte) are made once, at the first use, and never change.
#pragma once

#include <cstdint>
#include <optional>

namespace vort {

class Generator {
  public:
    // The draws of a stretch.
    static constexpr int kStretch = 1024;

    // The quotients of the next draws, at least kStretch of each part: the c-th number drawn is
    // x[c] + y[c] + z[c], added in this order, without its whole part.
    struct Stretch {
        const double* x;
        const double* y;
        const double* z;
    };

    // A number of draws to go ahead.
    class Skip {
      public:
        explicit Skip(std::uint64_t draws);

      private:
        friend class Generator;
        int x_;  // powers of the multipliers
        int y_;
        int z_;
    };

    // Where every run starts: 1, 3, 5.
    Generator() = default;

    // Any numbers; they are taken as residues, with their signs. Of states that the first one
    // never comes to, numbers may be outside [0, 1).
    Generator(int x, int y, int z);

    // The next number, in [0, 1).
    double next();

    void skip(const Skip& draws);
    void skip(std::uint64_t draws) { skip(Skip(draws)); }

    // For c = 0 .. n-1: out[c] = the next number times (left - c), cut to a whole number. This is
    // where, from 0, an item that is drawn without replacement stands among the left - c that are
    // left; a long order may be asked for piece by piece.
    void positions(int n, int left, int* out);

    // Nothing for a state that is on none of the cycles, such as 0, 0, 0: it has no tables.
    std::optional<Stretch> stretch() const;

    // The residues.
    int x() const { return x_; }
    int y() const { return y_; }
    int z() const { return z_; }

    bool operator==(const Generator&) const = default;

  private:
    int x_ = 1;
    int y_ = 3;
    int z_ = 5;
};

}  // namespace vort
