// Random orders of two-valued labels, eight at a time, drawn without moving the labels about.
//
// To draw without replacement, the k-th of the items that are left is taken and those behind it
// close the gap. With two kinds of items only, an item is one bit, and closing the gap a shift
// within a 64-bit word: a word keeps what is left of its 64 labels, and the number of labels up to
// each word's end tells which word holds the k-th.
//
//     labels left in words   3  5  0  2        k = 6
//     labels up to the end   3  8  8 10        one end is not above 6: word 1, label 6 - 3 = 3
//     afterwards             3  7  7  9        the ends above k move down by one
//
// Eight orders are drawn at the same time, each from labels of its own, so that the ends of a word
// in all eight are compared, and moved, by one instruction each.
//
// Cost: 2 to 3 nanoseconds a draw from 1000 labels. It grows with the number of words, slowly: ten
// times the labels take about four times as long a draw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "numeric/lanes.h"

namespace vort {

class LabelLanes {
  public:
    // More labels than a count can hold cannot be drawn from here.
    static constexpr int kMostLabels = 32767;

    // One position for each lane, from 0, among the labels that the lane has left.
    using Positions [[gnu::vector_size(kLanes * sizeof(std::int16_t))]] = std::int16_t;

    // labels[i] != 0: item i has label 1.
    explicit LabelLanes(std::span<const unsigned char> labels);

    // Puts all items back, in all lanes.
    void refill();

    // Takes one item of each lane; out[l] = value[its label].
    void take(const Positions& position, const double (&value)[2], double* out);

  private:
    static constexpr int kBits = 64;

    using Ends = Positions;

    std::vector<Ends> full_ends_;  // element 0 stands before the first word, and is 0
    std::vector<Ends> ends_;
    std::vector<std::uint64_t> full_words_;  // word w of lane l at w * kLanes + l
    std::vector<std::uint64_t> words_;
};

// In the header since it is called for every draw.
inline void LabelLanes::take(const Positions& position, const double (&value)[2], double* out) {
    Ends passed{};
    Ends* const ends = ends_.data();
    const std::size_t count = ends_.size();
    for (std::size_t w = 1; w < count; ++w) {
        const Ends behind = ends[w] > position;  // -1 where it holds
        ends[w] += behind;
        passed += behind;
    }
    const auto words = static_cast<int>(count) - 1;
    for (int l = 0; l < kLanes; ++l) {
        const int w = words + passed[l];
        const int bit = position[l] - ends[w][l];
        std::uint64_t& word = words_[static_cast<std::size_t>(w * kLanes + l)];
        const std::uint64_t here = word >> bit;
        const std::uint64_t before = (std::uint64_t{1} << bit) - 1;
        word = (word & before) | ((word >> 1) & ~before);
        out[l] = value[here & 1];
    }
}

}  // namespace vort
