// Packed columns that come one after the other, nobody knows how many.
#pragma once

#include <algorithm>
#include <span>
#include <utility>

#include "genotypes/genotypes.h"

namespace vort {

class PackedColumns {
  public:
    explicit PackedColumns(int individuals)
        : individuals_(individuals), stride_(packed_size(individuals)) {}

    // The next column, to be filled; its bytes are not cleared. Valid until the next one. Room that
    // is not used yet takes no memory.
    std::span<unsigned char> add() {
        const std::size_t used = stride_ * static_cast<std::size_t>(markers_);
        if (used + stride_ > room_) {
            room_ = std::max(2 * room_, used + stride_);
            bytes_.resize(room_);
        }
        ++markers_;
        return {bytes_.data() + used, stride_};
    }

    Genotypes take() {
        bytes_.resize(stride_ * static_cast<std::size_t>(markers_));
        return {individuals_, markers_, std::move(bytes_)};
    }

  private:
    int individuals_;
    std::size_t stride_;
    int markers_ = 0;
    std::size_t room_ = 0;
    LargeArray<unsigned char> bytes_;
};

}  // namespace vort
