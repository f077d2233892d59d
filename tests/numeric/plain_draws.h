// The generator and random orders as they are defined, a draw at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "numeric/generator.h"

namespace vort::testing {

// Three residues and their quotients, as published but for the second modulus.
struct PlainGenerator {
    std::int64_t x = 1, y = 3, z = 5;

    double next() {
        x = 171 * x % 30269;
        y = 172 * y % 30309;
        z = 170 * z % 30323;
        const double sum = static_cast<double>(x) / 30269.0 + static_cast<double>(y) / 30309.0 +
                           static_cast<double>(z) / 30323.0;
        return sum - static_cast<int>(sum);
    }

    bool operator==(const Generator& other) const {
        return x == other.x() && y == other.y() && z == other.z();
    }
};

// Items 0 .. n-1, drawn from a list whose gaps are closed. The list is in pieces, so that this ends
// with many items too.
inline std::vector<int> plain_order(PlainGenerator& generator, int n) {
    constexpr int kPiece = 256;
    std::vector<std::vector<int>> pieces(static_cast<std::size_t>(n / kPiece + 1));
    for (int i = 0; i < n; ++i) pieces[i / kPiece].push_back(i);
    std::vector<int> order;
    for (int c = 0; c < n; ++c) {
        auto k = static_cast<std::size_t>((n - c) * generator.next());
        auto piece = pieces.begin();
        for (; k >= piece->size(); ++piece) k -= piece->size();
        order.push_back((*piece)[k]);
        piece->erase(piece->begin() + static_cast<std::ptrdiff_t>(k));
    }
    return order;
}

}  // namespace vort::testing
