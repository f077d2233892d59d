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
// Cost: some 2 nanoseconds a draw from 1000 labels, and 4 from 4000: it grows with the number of
// words, slowly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "numeric/instructions.h"
#include "numeric/lanes.h"

namespace vort {

class LabelLanes {
  public:
    // More labels than a count can hold cannot be drawn from here.
    static constexpr int kMostLabels = 32767;

    // labels[i] != 0: item i has label 1.
    LabelLanes(std::span<const unsigned char> labels, Instructions instructions);

    // Draws all n items of each lane. positions[l * n + c]: where, from 0, the c-th item of lane l
    // stands among those that the lane has left; bit l of out[c] is its label.
    void draw(std::span<const int> positions, unsigned char* out);

  private:
    static constexpr int kBits = 64;

    Instructions instructions_;
    int words_;
    std::vector<std::int16_t> positions_;  // kLanes a draw
    std::vector<std::int16_t> full_ends_;
    std::vector<std::int16_t> ends_;  // as LabelState has them
    std::vector<std::uint64_t> full_words_;
    std::vector<std::uint64_t> left_;
};

}  // namespace vort
