#include "numeric/combinations.h"

#include <limits>

namespace vort {

// Every partial product is a binomial coefficient itself, so each division is exact, and they grow
// up to the last one, so the first that does not fit settles the result.
int choose(int i, int j) {
    constexpr long kLargest = std::numeric_limits<int>::max();
    long steps = j;
    if (steps > i / 2) steps = i - steps;
    long result = 1;
    for (long t = 0; t < steps; ++t) {
        result = (i - t) * result / (t + 1);
        if (result > kLargest) return std::numeric_limits<int>::max();
    }
    return static_cast<int>(result);
}

void sortchoose1(int c, int m, int k, int* out) {
    decode_combination(c, m, k, out, choose);
}

}  // namespace vort
