#include "numeric/keyed_sort.h"

#include <algorithm>
#include <array>

#include "numeric/sort_kernel.h"

namespace vort {

void sort_keyed(std::span<KeyedIndex> items, std::size_t wanted, Instructions instructions) {
    // Registers of eight doubles gain nothing over four.
    const auto sort = instructions == Instructions::kPortable
                          ? SortKernel<Instructions::kPortable>::sort
                          : SortKernel<Instructions::kWide>::sort;
    if (items.size() >= kSortWindow) {
        sort(items.data(), items.size(), wanted);
    } else if (items.size() > 1) {
        std::array<KeyedIndex, kSortWindow> few{};
        std::copy(items.begin(), items.end(), few.begin());
        sort(few.data(), items.size(), items.size());
        std::copy_n(few.begin(), items.size(), items.begin());
    }
}

}  // namespace vort
