#include "numeric/label_lanes.h"

#include <algorithm>

namespace vort {

LabelLanes::LabelLanes(std::span<const unsigned char> labels) {
    const std::size_t size = labels.size();
    const std::size_t words = (size + kBits - 1) / kBits;
    full_ends_.resize(words + 1);
    full_words_.resize(words * kLanes);
    for (std::size_t w = 0; w < words; ++w) {
        const std::size_t end = std::min(size, (w + 1) * kBits);
        std::uint64_t word = 0;
        for (std::size_t i = w * kBits; i < end; ++i) {
            if (labels[i] != 0) word |= std::uint64_t{1} << (i % kBits);
        }
        full_ends_[w + 1] = Ends{} + static_cast<std::int16_t>(end);
        std::fill_n(full_words_.begin() + w * kLanes, kLanes, word);
    }
    refill();
}

void LabelLanes::refill() {
    ends_ = full_ends_;
    words_ = full_words_;
}

}  // namespace vort
