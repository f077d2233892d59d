#include "numeric/label_lanes.h"

#include <algorithm>

#include "numeric/draw_kernel.h"

namespace vort {

// The widest instructions compare into registers of their own, which a chain of comparisons as long
// as this one pays for.
LabelLanes::LabelLanes(std::span<const unsigned char> labels, Instructions instructions)
    : instructions_(std::min(instructions, Instructions::kWide)),
      words_(static_cast<int>((labels.size() + 2 * kBits - 1) / (2 * kBits)) * 2) {
    const auto words = static_cast<std::size_t>(words_);
    full_ends_.resize(words * kLanes);
    full_words_.resize(words * kLanes);
    for (std::size_t w = 0; w < words; ++w) {
        const std::size_t end = std::min(labels.size(), (w + 1) * kBits);
        std::uint64_t word = 0;
        for (std::size_t i = w * kBits; i < end; ++i) {
            if (labels[i] != 0) word |= std::uint64_t{1} << (i % kBits);
        }
        std::fill_n(full_ends_.begin() + w * kLanes, kLanes, static_cast<std::int16_t>(end));
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
