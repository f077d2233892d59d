#include "numeric/random_order.h"

#include <algorithm>

namespace vort {

namespace {

// The nodes above children of that many items. Children behind the last item start where the node
// ends, so that no position leads to them.
void fill_level(std::int64_t child, int n, std::vector<ItemTree::Node>& level) {
    const std::int64_t node = child * ItemTree::kChildren;
    level.resize(static_cast<std::size_t>((n + node - 1) / node));
    for (std::int64_t first = 0; first < n; first += node) {
        const std::int64_t size = std::min<std::int64_t>(node, n - first);
        for (int k = 0; k < ItemTree::kChildren; ++k) {
            level[first / node].start[k] = static_cast<int>(std::min(k * child, size));
        }
    }
}

}  // namespace

ItemTree RandomOrder::full_tree(int n) {
    words_.assign(static_cast<std::size_t>(n) / ItemTree::kBits + 1, ~std::uint64_t{0});
    ItemTree tree{words_.data(), {}, 0};
    std::int64_t child = ItemTree::kBits;
    do {
        std::vector<ItemTree::Node>& level = nodes_[tree.levels];
        fill_level(child, n, level);
        tree.nodes[tree.levels++] = level.data();
        child *= ItemTree::kChildren;
    } while (child < n);
    return tree;
}

void RandomOrder::draw(Generator& generator, std::span<int> order) {
    const auto take_items =
        kernel_for(instructions_, []<Instructions I>() { return DrawKernel<I>::take_items; });
    const int n = static_cast<int>(order.size());
    const ItemTree tree = full_tree(n);
    const bool may_be_below_0 = !generator.stretch();
    for (int left = n; left > 0;) {
        const int size = std::min(left, Generator::kStretch);
        int* const next = order.data() + (n - left);
        generator.positions(size, left, next);
        for (int c = 0; may_be_below_0 && c < size; ++c) next[c] = std::max(next[c], 0);
        take_items(tree, size, next);
        left -= size;
    }
}

void RandomOrder::draw(Generator& generator, const Clusters& clusters, std::span<int> order) {
    if (clusters.none()) return draw(generator, order);
    for (int c = 0; c < clusters.count(); ++c) {
        const std::span<const int> members = clusters.members(c);
        within_.resize(members.size());
        draw(generator, within_);
        for (std::size_t k = 0; k < members.size(); ++k) {
            order[static_cast<std::size_t>(members[k])] =
                members[static_cast<std::size_t>(within_[k])];
        }
    }
}

void draw_order(Generator& generator, std::span<int> order) {
    RandomOrder().draw(generator, order);
}

}  // namespace vort
