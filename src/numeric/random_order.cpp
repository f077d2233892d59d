#include "numeric/random_order.h"

#include <algorithm>

#include "numeric/draw_kernel.h"

namespace vort {

namespace {

constexpr int kBits = 64;

}  // namespace

void RandomOrder::fill_words(int n) {
    const std::size_t size = static_cast<std::size_t>(n);
    words_.assign((size + kBits - 1) / kBits, ~std::uint64_t{0});
    if (size % kBits != 0) words_.back() >>= kBits - size % kBits;
}

// Children behind the last item start where the node ends, so that no position leads to them.
void RandomOrder::fill_starts(int n) {
    starts_.resize(0);
    for (std::int64_t child = kBits; starts_.empty() || child < n; child *= ItemTree::kChildren) {
        const std::int64_t node = child * ItemTree::kChildren;
        std::vector<int>& level = starts_.emplace_back();
        for (std::int64_t first = 0; first < n; first += node) {
            const std::int64_t size = std::min(node, n - first);
            for (int k = 0; k < ItemTree::kChildren; ++k) {
                level.push_back(static_cast<int>(std::min(k * child, size)));
            }
        }
    }
}

void RandomOrder::draw(Generator& generator, std::span<int> order) {
    const int n = static_cast<int>(order.size());
    if (n == 0) return;
    fill_words(n);
    fill_starts(n);
    ItemTree tree{words_.data(), {}, static_cast<int>(starts_.size())};
    for (std::size_t l = 0; l < starts_.size(); ++l) tree.starts[l] = starts_[l].data();
    const auto take_items =
        kernel_for(instructions_, []<Instructions I>() { return DrawKernel<I>::take_items; });
    for (int left = n; left > 0;) {
        const int size = std::min(left, Generator::kStretch);
        int* const next = order.data() + (n - left);
        generator.positions(size, left, next);
        take_items(tree, size, next);
        left -= size;
    }
}

void draw_order(Generator& generator, std::span<int> order) {
    RandomOrder().draw(generator, order);
}

}  // namespace vort
