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

#include <cmath>
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
    using Ints [[gnu::vector_size(8)]] = int;
};

template <>
struct Register<Instructions::kWide> {
    static constexpr int kSize = 4;
    using Doubles [[gnu::vector_size(32)]] = double;
    using Mask [[gnu::vector_size(32)]] = std::int64_t;
    using Ints [[gnu::vector_size(16)]] = int;
};

template <>
struct Register<Instructions::kWidest> {
    static constexpr int kSize = 8;
    using Doubles [[gnu::vector_size(64)]] = double;
    using Mask [[gnu::vector_size(64)]] = std::int64_t;
    using Ints [[gnu::vector_size(32)]] = int;
};

// `yes` where the condition holds, else `no`; both are evaluated.
inline double select(bool condition, double yes, double no) {
    return condition ? yes : no;
}
template <typename Mask, typename Doubles>
[[gnu::always_inline]] inline Doubles select(const Mask& condition, const Doubles& yes,
                                             const Doubles& no) {
    return condition ? yes : no;
}

template <typename Doubles>
[[gnu::always_inline]] inline Doubles magnitude(const Doubles& x) {
    constexpr std::int64_t kAllButSign = 0x7FFFFFFFFFFFFFFF;
    using Bits = decltype(x == x);
    return reinterpret_cast<Doubles>(reinterpret_cast<Bits>(x) & kAllButSign);
}

// The bits that any lane has.
template <typename Mask>
[[gnu::always_inline]] inline std::int64_t any_of_lanes(const Mask& mask) {
    std::int64_t bits = 0;
    for (std::size_t l = 0; l < sizeof mask / sizeof bits; ++l) bits |= mask[l];
    return bits;
}

// The part before the point; vectors take values from 0 to 2^31 - 1.
inline double whole_part(double x) {
    return std::trunc(x);
}
template <Instructions kInstructions>
[[gnu::always_inline]] inline auto whole_part_of(
    const typename Register<kInstructions>::Doubles& x) {
    using Types = Register<kInstructions>;
    return __builtin_convertvector(__builtin_convertvector(x, typename Types::Ints),
                                   typename Types::Doubles);
}
[[gnu::always_inline]] inline auto whole_part(const Register<Instructions::kPortable>::Doubles& x) {
    return whole_part_of<Instructions::kPortable>(x);
}
[[gnu::always_inline]] inline auto whole_part(const Register<Instructions::kWide>::Doubles& x) {
    return whole_part_of<Instructions::kWide>(x);
}
[[gnu::always_inline]] inline auto whole_part(const Register<Instructions::kWidest>::Doubles& x) {
    return whole_part_of<Instructions::kWidest>(x);
}

}  // namespace vort
