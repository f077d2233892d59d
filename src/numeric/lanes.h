// Doubles side by side, for arithmetic that is the same in each.
//
// The compiler's vector types do what the machine has for this; every lane gets the bytes that the
// same operations give on one double. What is written once as a template over the number type
// serves one value and a vector of them alike:
//
//     template <typename Number>
//     Number ratio(Number a, Number b) { return select(b > 0.0, a / b, Number{}); }
//
// Vectors are as wide as the machine's registers: the compiler takes wider ones apart lane by lane
// where they are compared.
#pragma once

#include <cstddef>
#include <cstdint>

#include "numeric/instructions.h"

namespace vort {

// How many orders of a phenotype are worked on at a time.
constexpr int kLanes = 8;

template <Instructions kInstructions>
struct Register;

template <>
struct Register<Instructions::kPortable> {
    static constexpr int kSize = 2;
    using Doubles [[gnu::vector_size(16)]] = double;
    using Mask [[gnu::vector_size(16)]] = std::int64_t;
};

template <>
struct Register<Instructions::kWide> {
    static constexpr int kSize = 4;
    using Doubles [[gnu::vector_size(32)]] = double;
    using Mask [[gnu::vector_size(32)]] = std::int64_t;
};

template <>
struct Register<Instructions::kWidest> {
    static constexpr int kSize = 8;
    using Doubles [[gnu::vector_size(64)]] = double;
    using Mask [[gnu::vector_size(64)]] = std::int64_t;
};

// `yes` where the condition holds, else `no`; both are evaluated.
[[gnu::always_inline]] inline double select(bool condition, double yes, double no) {
    return condition ? yes : no;
}
template <typename Mask, typename Doubles>
[[gnu::always_inline]] inline Doubles select(const Mask& condition, const Doubles& yes,
                                             const Doubles& no) {
    return condition ? yes : no;
}

[[gnu::always_inline]] inline double magnitude(const double& x) {
    return __builtin_fabs(x);
}
template <typename Doubles>
[[gnu::always_inline]] inline Doubles magnitude(const Doubles& x) {
    constexpr std::int64_t kAllButSign = 0x7FFFFFFFFFFFFFFF;
    using Bits = decltype(x == x);
    return reinterpret_cast<Doubles>(reinterpret_cast<Bits>(x) & kAllButSign);
}

// What comparisons give, lane by lane: bool for a double, a vector of all or no bits otherwise.
[[gnu::always_inline]] inline bool both(bool a, bool b) {
    return a && b;
}
template <typename Mask>
[[gnu::always_inline]] inline Mask both(const Mask& a, const Mask& b) {
    return a & b;
}
[[gnu::always_inline]] inline bool either(bool a, bool b) {
    return a || b;
}
template <typename Mask>
[[gnu::always_inline]] inline Mask either(const Mask& a, const Mask& b) {
    return a | b;
}

// The bits that any lane has.
template <typename Mask>
[[gnu::always_inline]] inline std::int64_t any_of_lanes(const Mask& mask) {
    std::int64_t bits = 0;
    for (std::size_t l = 0; l < sizeof mask / sizeof bits; ++l) bits |= mask[l];
    return bits;
}
[[gnu::always_inline]] inline bool any(bool mask) {
    return mask;
}
template <typename Mask>
[[gnu::always_inline]] inline bool any(const Mask& mask) {
    return any_of_lanes(mask) != 0;
}

// The part before the point, of 0 up to 2^51. A double of 2^52 has no digits behind the point, so
// that adding as much rounds to a whole number, up or down.
template <typename Number>
[[gnu::always_inline]] inline Number whole_part(const Number& x) {
    constexpr double kNoFraction = 0x1p52;
    const Number nearest = (x + kNoFraction) - kNoFraction;
    return nearest - select(nearest > x, Number{} + 1.0, Number{});
}

}  // namespace vort
