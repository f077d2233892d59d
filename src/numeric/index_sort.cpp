// Quicksort with a stack of its own and insertion sort for short pieces
// (R. Sedgewick, "Implementing quicksort programs", Comm. ACM 21, 1978, pp. 847-857).
//
// What is sorted is a row of items, each with a key: the items of an index sort are element
// numbers whose keys are looked up, those of a sort in place are their own keys. One step splits
// items lo .. hi by the median of the first, the middle and the last:
//
//     before   | lo | lo+1 | lo+2                      hi-1 | hi |
//     set up   | <= | pivot|                                | >= |
//     scans                  i -->                <-- j
//     after    | <=                   | pivot | >=               |
//                                       j       i = j + 1, or j + 2 where both met on one item
//
// The longer part waits on the stack and the shorter one is next, so at most log2(n) parts wait.
// The order of equal keys is decided by the exchanges made here, and reports show it: the sequence
// of comparisons and exchanges is fixed.
//
// The scans need no bounds check, whatever the keys: each scan steps first and stops where its
// comparison fails. The upward scan fails at hi at the latest, since the set-up leaves no
// key(hi) < pivot, the downward one at the pivot itself in lo + 1; an exchange puts the items on
// which the scans stopped where the other scan stops in turn. Comparisons with a NaN are all
// false, so NaN keys stop the scans too: they leave an order that means nothing, but no item is
// lost and no element outside is touched.
//
// Cost: n log2(n) comparisons on average, n^2 / 4 at worst; equal keys are split evenly.
#include "numeric/index_sort.h"

#include <numeric>
#include <utility>
#include <vector>

namespace vort {

namespace {

constexpr int kInsertionGap = 7;

struct IndexRange {
    int lo;
    int hi;
    int length() const { return hi - lo + 1; }
};

template <typename Item, typename Key>
void insertion_sort(Item* items, IndexRange range, Key key) {
    for (int j = range.lo + 1; j <= range.hi; ++j) {
        const Item item = items[j];
        int i = j - 1;
        for (; i >= range.lo && key(items[i]) > key(item); --i) items[i + 1] = items[i];
        items[i + 1] = item;
    }
}

template <typename Item, typename Key>
void swap_if_greater(Item& first, Item& second, Key key) {
    if (key(first) > key(second)) std::swap(first, second);
}

// Splits a range of at least three items; returns the parts left and right of the pivot.
template <typename Item, typename Key>
std::pair<IndexRange, IndexRange> partition(Item* items, IndexRange range, Key key) {
    const auto [lo, hi] = range;
    std::swap(items[lo + (hi - lo) / 2], items[lo + 1]);
    swap_if_greater(items[lo], items[hi], key);
    swap_if_greater(items[lo + 1], items[hi], key);
    swap_if_greater(items[lo], items[lo + 1], key);

    const Item pivot = items[lo + 1];
    int i = lo + 1;
    int j = hi;
    for (;;) {
        do ++i;
        while (key(items[i]) < key(pivot));
        do --j;
        while (key(items[j]) > key(pivot));
        if (j < i) break;
        std::swap(items[i], items[j]);
    }
    items[lo + 1] = items[j];
    items[j] = pivot;
    return {{lo, j - 1}, {i, hi}};
}

template <typename Item, typename Key>
void sort_range(Item* items, IndexRange range, Key key) {
    std::vector<IndexRange> waiting;
    for (;;) {
        if (range.hi - range.lo < kInsertionGap) {
            insertion_sort(items, range, key);
            if (waiting.empty()) return;
            range = waiting.back();
            waiting.pop_back();
            continue;
        }
        const auto [left, right] = partition(items, range, key);
        const bool right_waits = right.length() >= left.length();
        waiting.push_back(right_waits ? right : left);
        range = right_waits ? left : right;
    }
}

template <typename T>
void sort_index(const T* a, int* indx, IndexRange range) {
    if (range.length() < 1) return;
    std::iota(indx + range.lo, indx + range.hi + 1, range.lo);
    sort_range(indx, range, [a](int element) { return a[element]; });
}

template <typename T>
void sort_values(T* a, int n) {
    sort_range(a, IndexRange{1, n}, [](T value) { return value; });
}

}  // namespace

void Quickindex(double* a, int* indx, int n) {
    sort_index(a, indx, {1, n});
}
void iQuickindex(int* a, int* indx, int n) {
    sort_index(a, indx, {1, n});
}
void Quickindex1(double* a, int* indx, int n) {
    sort_index(a, indx, {0, n - 1});
}
void Quicksort(double* a, int n) {
    sort_values(a, n);
}
void iQuicksort(int* a, int n) {
    sort_values(a, n);
}

}  // namespace vort
