// A set of one or two ranked markers.
#pragma once

#include <array>

#include "numeric/combinations.h"

namespace vort {

struct MarkerSet {
    int size = 1;                 // k
    int number = 0;               // 1-based among the sets of this size out of m, lexicographic
    std::array<int, 2> marker{};  // from 0, ascending; `size` of them
};

inline MarkerSet marker_set(int size, int number, int m) {
    std::array<int, 4> decoded{};
    sortchoose1(number, m, size, decoded.data());
    return {size, number, {decoded[1] - 1, decoded[2] - 1}};
}

}  // namespace vort
