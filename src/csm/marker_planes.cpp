#include "csm/marker_planes.h"

#include <algorithm>

namespace vort {

namespace {

constexpr std::size_t kPlanes = 3;
constexpr std::size_t kWordBits = 64;

}  // namespace

MarkerPlanes::MarkerPlanes(int individuals, int markers)
    : individuals_(individuals),
      markers_(markers),
      words_(plane_words(individuals)),
      planes_(static_cast<std::size_t>(markers) * kPlanes * words_) {}

void MarkerPlanes::set(int marker, std::span<const signed char> codes) {
    std::uint64_t* const one = planes_.data() + static_cast<std::size_t>(marker) * kPlanes * words_;
    for (std::size_t w = 0; w < words_; ++w) {
        std::uint64_t bits[kPlanes] = {0, 0, 0};
        const std::size_t end = std::min(codes.size(), (w + 1) * kWordBits);
        for (std::size_t i = w * kWordBits; i < end; ++i) {
            const std::size_t bit = i % kWordBits;
            bits[0] |= std::uint64_t{codes[i] == 1} << bit;
            bits[1] |= std::uint64_t{codes[i] == 2} << bit;
            bits[2] |= std::uint64_t{codes[i] < 0} << bit;
        }
        for (std::size_t p = 0; p < kPlanes; ++p) one[p * words_ + w] = bits[p];
    }
}

MarkerPlanes::Planes MarkerPlanes::planes(int marker) const {
    const std::uint64_t* const one =
        planes_.data() + static_cast<std::size_t>(marker) * kPlanes * words_;
    return {one, one + words_, one + 2 * words_};
}

std::string_view MarkerPlanes::bytes(int marker) const {
    return {reinterpret_cast<const char*>(planes(marker).one),
            kPlanes * words_ * sizeof(std::uint64_t)};
}

int MarkerPlanes::code(int i, int marker) const {
    const auto [one, two, missing] = planes(marker);
    const auto has = [i](const std::uint64_t* plane) {
        const auto at = static_cast<std::size_t>(i);
        return static_cast<int>(plane[at / kWordBits] >> at % kWordBits & 1);
    };
    return has(one) + 2 * has(two) - has(missing);
}

}  // namespace vort
