#include "numeric/clustered_labels.h"

#include <algorithm>

namespace vort {

namespace {

constexpr std::size_t kBits = 64;

// Adds bits to a plane that has none there yet; the bits behind those of `from` are 0.
void add_bits(std::span<const std::uint64_t> from, std::uint64_t* plane, std::size_t words,
              std::size_t first) {
    const std::size_t shift = first % kBits;
    const std::size_t place = first / kBits;
    for (std::size_t w = 0; w < from.size(); ++w) {
        plane[place + w] |= from[w] << shift;
        if (shift > 0 && place + w + 1 < words) plane[place + w + 1] |= from[w] >> (kBits - shift);
    }
}

// Of each draw's item.
std::vector<unsigned char> labels_by_draw(std::span<const unsigned char> labels,
                                          const Clusters& clusters) {
    std::vector<unsigned char> out;
    out.reserve(labels.size());
    for (const int i : clusters.all_members()) out.push_back(labels[static_cast<std::size_t>(i)]);
    return out;
}

}  // namespace

ClusteredLabels::ClusteredLabels(std::span<const unsigned char> labels, const Clusters& clusters,
                                 Instructions instructions)
    : n_(static_cast<int>(labels.size())),
      order_(labels.size()),
      constant_((labels.size() + kBits - 1) / kBits) {
    if (clusters.none()) {
        add_cluster(labels, 0, instructions);
        return;
    }
    const std::vector<unsigned char> drawn = labels_by_draw(labels, clusters);
    std::size_t first = 0;
    for (int c = 0; c < clusters.count(); ++c) {
        const std::size_t size = clusters.members(c).size();
        add_cluster(std::span(drawn).subspan(first, size), first, instructions);
        first += size;
    }
}

void ClusteredLabels::add_cluster(std::span<const unsigned char> labels, std::size_t first,
                                  Instructions instructions) {
    if (labels.empty()) return;
    if (labels.size() <= SmallClusters::kMostMembers) {
        const bool follows =
            !small_.empty() &&
            small_.back().first + static_cast<std::size_t>(small_.back().labels.draws()) == first;
        if (!follows) small_.push_back({{}, first});
        return small_.back().labels.add(labels);
    }
    const auto is_one = [](unsigned char label) { return label != 0; };
    if (std::ranges::none_of(labels, is_one)) return;
    if (!std::ranges::all_of(labels, is_one)) {
        large_.push_back({LabelRuns(labels, instructions), first});
        return;
    }
    for (std::size_t d = first; d < first + labels.size(); ++d) {
        constant_[d / kBits] |= std::uint64_t{1} << d % kBits;
    }
}

void ClusteredLabels::draw(const Generator& start, int orders, std::uint64_t* planes,
                           std::size_t stride) const {
    for (int l = 0; l < orders; ++l) {
        std::copy(constant_.begin(), constant_.end(),
                  planes + static_cast<std::size_t>(l) * stride);
    }
    for (const auto& part : large_) draw_part(part, start, orders, planes, stride);
    for (const auto& part : small_) {
        Generator from = start;
        from.skip(part.first);
        for (int l = 0; l < orders; ++l) {
            part.labels.draw(from, planes + static_cast<std::size_t>(l) * stride, part.first);
            from.skip(order_);
        }
    }
}

void ClusteredLabels::draw_part(const Part<LabelRuns>& part, Generator start, int orders,
                                std::uint64_t* planes, std::size_t stride) const {
    const std::size_t words = part.labels.plane_words();
    std::vector<std::uint64_t> drawn(static_cast<std::size_t>(orders) * words);
    start.skip(part.first);
    part.labels.draw(start, order_, orders, drawn.data());
    for (std::size_t l = 0; l < static_cast<std::size_t>(orders); ++l) {
        add_bits({drawn.data() + l * words, words}, planes + l * stride, plane_words(), part.first);
    }
}

}  // namespace vort
