// Quicksort that splits a copy: one pass over it fills the array from both ends.
//
//     copy, pivot 5    7  2  5  9  1
//     array            2  1  5  9  7      the front in its order, the back reversed
//
// Items equal to the pivot go to the back, so n equal items take n partitions of n. The front is
// sorted by recursion, the back by going round again: the order of the random draws is the same,
// and equal items do not deepen the recursion.
#include "legacy/recursive_sort.h"

#include <functional>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

#include "legacy/random.h"

namespace vort {

namespace {

// Moves the items that are before the pivot to the front; returns the pivot's place.
template <typename Item, typename Before>
std::size_t split(std::span<Item> items, std::size_t pivot, Before before) {
    const std::vector<Item> copy(items.begin(), items.end());
    std::size_t front = 0;
    std::size_t back = items.size();
    for (std::size_t i = 0; i < copy.size(); ++i) {
        if (i == pivot) continue;
        const bool to_front = before(copy[i], copy[pivot]);
        items[to_front ? front++ : --back] = copy[i];
    }
    items[front] = copy[pivot];
    return front;
}

template <typename Item, typename Before>
void sort_items(std::span<Item> items, Before before) {
    while (items.size() > 2) {
        const auto pivot = static_cast<std::size_t>(static_cast<double>(items.size()) * rand1());
        const std::size_t place = split(items, pivot, before);
        sort_items(items.first(place), before);
        items = items.subspan(place + 1);
    }
    if (items.size() == 2 && before(items[1], items[0])) std::swap(items[0], items[1]);
}

template <typename T>
std::span<T> span_of(T* a, int n) {
    return {a, static_cast<std::size_t>(n > 0 ? n : 0)};
}

template <typename Before>
void sort_with_companion(double* a, int* b, int n, Before before) {
    std::vector<std::pair<double, int>> items;
    for (int i = 1; i <= n; ++i) items.emplace_back(a[i], b[i]);
    sort_items(std::span(items),
               [before](const auto& x, const auto& y) { return before(x.first, y.first); });
    for (int i = 1; i <= n; ++i) std::tie(a[i], b[i]) = items[static_cast<std::size_t>(i - 1)];
}

}  // namespace

void quicksort(double* a, int n) {
    sort_items(span_of(a, n), std::less<double>());
}
void iquicksort(int* a, int n) {
    sort_items(span_of(a, n), std::less<int>());
}

void quicksortsort(double* a, int* b, int n) {
    sort_with_companion(a, b, n, std::less<double>());
}
void Lquicksortsort(double* a, int* b, int n) {
    sort_with_companion(a, b, n, std::greater<double>());
}

}  // namespace vort
