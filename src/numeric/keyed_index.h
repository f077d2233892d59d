// A key with the number of what it belongs to.
#pragma once

namespace vort {

struct KeyedIndex {
    double key;
    int index;
};

}  // namespace vort
