#include "numeric/remaining_items.h"

#include <algorithm>
#include <bit>

namespace vort {

namespace {

constexpr int kBits = 64;

// The place of the k-th bit set (from 0), by halving.
int select(std::uint64_t word, int k) {
    int place = 0;
    for (int half = kBits / 2; half > 0; half /= 2) {
        const int low = std::popcount(word & ((std::uint64_t{1} << half) - 1));
        if (k < low) continue;
        k -= low;
        word >>= half;
        place += half;
    }
    return place;
}

}  // namespace

RemainingItems::RemainingItems(int n)
    : words_((static_cast<std::size_t>(std::max(n, 1)) + kBits - 1) / kBits, ~std::uint64_t{0}),
      tree_(words_.size() + 1),
      top_(static_cast<int>(std::bit_floor(words_.size()))) {
    for (std::size_t w = 1; w < tree_.size(); ++w) {
        const std::size_t span = w & (~w + 1);  // words that tree_[w] counts
        tree_[w] = static_cast<int>(span * kBits);
    }
}

int RemainingItems::take(int k) {
    const int size = static_cast<int>(words_.size());
    int w = 0;
    for (int step = top_; step > 0; step /= 2) {
        if (w + step > size || tree_[w + step] > k) continue;
        w += step;
        k -= tree_[w];
    }
    const int bit = select(words_[w], k);
    words_[w] &= ~(std::uint64_t{1} << bit);
    for (int p = w + 1; p <= size; p += p & -p) --tree_[p];
    return w * kBits + bit;
}

}  // namespace vort
