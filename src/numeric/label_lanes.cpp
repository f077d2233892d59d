#include "numeric/label_lanes.h"

#include <algorithm>

#include "numeric/draw_kernel.h"

namespace vort {

LabelLanes::LabelLanes(std::span<const unsigned char> labels, Instructions instructions)
    : instructions_(instructions), words_(static_cast<int>((labels.size() + kBits - 1) / kBits)) {
    const auto words = static_cast<std::size_t>(words_);
    full_ends_.resize((1 + words + words % 2) * kLanes);
    full_words_.resize(words * kLanes);
    for (std::size_t w = 0; w < words; ++w) {
        const std::size_t end = std::min(labels.size(), (w + 1) * kBits);
        std::uint64_t word = 0;
        for (std::size_t i = w * kBits; i < end; ++i) {
            if (labels[i] != 0) word |= std::uint64_t{1} << (i % kBits);
        }
        std::fill_n(full_ends_.begin() + (w + 1) * kLanes, kLanes, static_cast<std::int16_t>(end));
        std::fill_n(full_words_.begin() + w * kLanes, kLanes, word);
    }
}

void LabelLanes::draw(std::span<const int> positions, unsigned char* out) {
    const auto interleave =
        kernel_for(instructions_, []<Instructions I>() { return DrawKernel<I>::interleave; });
    const auto draw_labels =
        kernel_for(instructions_, []<Instructions I>() { return DrawKernel<I>::labels; });
    const std::size_t n = positions.size() / kLanes;
    positions_.resize(positions.size());
    interleave(positions.data(), n, positions_.data());
    ends_ = full_ends_;
    left_ = full_words_;
    draw_labels(positions_.data(), n, {ends_.data(), words_, left_.data()}, out);
}

}  // namespace vort
