// Three multiplicative congruential generators are added modulo 1, which multiplies their periods
// (B. A. Wichmann and I. D. Hill, "An efficient and portable pseudo-random number generator",
// Applied Statistics 31, 1982, pp. 188-190). The published second modulus is 30307; this program
// has always used 30309, in the residue and in the quotient, and its results depend on it.
//
// 30309 = 3 * 10103 is no prime, but no part ever becomes a whole number: each multiplier is
// invertible modulo its modulus, RX and RZ start at no multiple of their prime moduli, and RY at no
// multiple of 10103. The exact sum is therefore no whole number either; it is a multiple of
// 1 / (30269 * 10103 * 30323), about 1e-13, and rounding to double cannot bridge such a distance.
// So the result is below 1, and n times it, cut to an int, is below n.
#include "numeric/random.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "numeric/draw_positions.h"
#include "numeric/remaining_items.h"

namespace vort {

int RX = 1;
int RY = 3;
int RZ = 5;

double rand1() {
    RX = (171 * RX) % 30269;
    RY = (172 * RY) % 30309;
    RZ = (170 * RZ) % 30323;
    const double sum = RX / 30269.0 + RY / 30309.0 + RZ / 30323.0;
    return sum - static_cast<int>(sum);
}

void init_rand1() {
    RX = 1;
    RY = 3;
    RZ = 5;
}

double rand2() {
    return std::rand() / 2147483647.0;
}

// Draws without replacement: the k-th of the numbers that are left, k drawn anew each time.
void randomsort(int n, int* out) {
    RemainingItems items(n);
    draw_positions(n, out + 1);
    for (int c = 1; c <= n; ++c) out[c] = items.take(out[c]) + 1;
}

int permutation1(short* y, int n) {
    const std::size_t size = static_cast<std::size_t>(std::max(n, 0)) + 1;
    std::vector<int> order(size);
    randomsort(n, order.data());
    const std::vector<short> before(y, y + size - 1);
    for (std::size_t i = 0; i + 1 < size; ++i) {
        y[i] = before[static_cast<std::size_t>(order[i + 1] - 1)];
    }
    return 0;
}

}  // namespace vort
