// Eight doubles side by side, for arithmetic that is the same in each.
//
// The compiler's vector types do what the machine has for this, two, four or eight doubles at a
// time; every lane gets the bytes that the same operations give on one double. What is written
// once as a template over the number type therefore serves one marker and eight alike:
//
//     template <typename Number>
//     Number ratio(Number a, Number b) { return select(b == Number{} + 0, Number{} + 1, a / b); }
#pragma once

#include <cmath>
#include <cstdint>

namespace vort {

constexpr int kLanes = 8;

using Lanes [[gnu::vector_size(kLanes * sizeof(double))]] = double;
using LaneMask [[gnu::vector_size(kLanes * sizeof(double))]] = std::int64_t;
using IntLanes [[gnu::vector_size(kLanes * sizeof(int))]] = int;

// `yes` where the condition holds, else `no`; both are evaluated.
inline double select(bool condition, double yes, double no) {
    return condition ? yes : no;
}
[[gnu::always_inline]] inline Lanes select(const LaneMask& condition, const Lanes& yes,
                                           const Lanes& no) {
    return condition ? yes : no;
}

// The part before the point; lanes take values from 0 to 2^31 - 1.
inline double whole_part(double x) {
    return std::trunc(x);
}
[[gnu::always_inline]] inline Lanes whole_part(const Lanes& x) {
    return __builtin_convertvector(__builtin_convertvector(x, IntLanes), Lanes);
}

}  // namespace vort
