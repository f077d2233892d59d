#include "numeric/keyed_sort.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace vort {

namespace {

constexpr int kBlock = 128;       // elements that are looked ahead at each end; offsets fit a byte
constexpr int kInsertionGap = 7;  // a range of at most as many elements is not split

// The misplaced elements of a block, or of what is left between two blocks, as distances from
// where it begins.
struct Misplaced {
    std::array<unsigned char, 2 * kBlock> offset;
    int first = 0;
    int end = 0;

    bool empty() const { return first == end; }
};

void find_not_below(const KeyedIndex* from, int size, double pivot, Misplaced& out) {
    int found = 0;
    for (int o = 0; o < size; ++o) {
        out.offset[found] = static_cast<unsigned char>(o);
        found += !(from[o].key < pivot);
    }
    out.first = 0;
    out.end = found;
}

// Downward from `from`.
void find_not_above(const KeyedIndex* from, int size, double pivot, Misplaced& out) {
    int found = 0;
    for (int o = 0; o < size; ++o) {
        out.offset[found] = static_cast<unsigned char>(o);
        found += !(from[-o].key > pivot);
    }
    out.first = 0;
    out.end = found;
}

// Both scans have stopped before the next element to look at: i moves up from it, j down.
struct Scans {
    KeyedIndex* i;
    KeyedIndex* j;
};

// Moves both scans on, block by block, as long as whole blocks fit between them.
Scans exchange_blocks(Scans scans, double pivot) {
    KeyedIndex* left = scans.i + 1;   // where the left block begins
    KeyedIndex* right = scans.j - 1;  // where the right block begins, downward
    Misplaced low;
    Misplaced high;
    while (right - left + 1 >= 2 * kBlock) {
        if (low.empty()) find_not_below(left, kBlock, pivot, low);
        if (high.empty()) find_not_above(right, kBlock, pivot, high);
        const int pairs = std::min(low.end - low.first, high.end - high.first);
        for (int k = 0; k < pairs; ++k) {
            std::swap(left[low.offset[low.first + k]], right[-high.offset[high.first + k]]);
        }
        low.first += pairs;
        high.first += pairs;
        if (low.empty()) left += kBlock;
        if (high.empty()) right -= kBlock;
    }
    // Where a block has misplaced elements left, its scan goes on in front of the first of them.
    return {low.empty() ? left - 1 : left + low.offset[low.first] - 1,
            high.empty() ? right + 1 : right - high.offset[high.first] + 1};
}

// The last exchanges, among the fewer than 2 * kBlock elements between the scans; returns where
// the scans stop for good. An element that one scan put in place stops the other one there.
Scans exchange_rest(Scans scans, double pivot) {
    KeyedIndex* const left = scans.i + 1;
    KeyedIndex* const right = scans.j - 1;
    const int size = static_cast<int>(right - left) + 1;
    Misplaced low;
    Misplaced high;
    find_not_below(left, size, pivot, low);
    find_not_above(right, size, pivot, high);
    for (int k = 0;; ++k) {
        KeyedIndex* const i = k < low.end ? std::min(left + low.offset[k], scans.j) : scans.j;
        KeyedIndex* const j = k < high.end ? std::max(right - high.offset[k], scans.i) : scans.i;
        if (j < i) return {i, j};
        if (j == i) return {i + 1, j - 1};  // both met on a key equal to the pivot
        std::swap(*i, *j);
        scans = {i, j};
    }
}

void swap_if_greater(KeyedIndex& first, KeyedIndex& second) {
    if (first.key > second.key) std::swap(first, second);
}

struct Range {
    KeyedIndex* lo;
    KeyedIndex* hi;
    std::ptrdiff_t gap() const { return hi - lo; }
};

std::pair<Range, Range> partition(Range range) {
    const auto [lo, hi] = range;
    std::swap(lo[range.gap() / 2], lo[1]);
    swap_if_greater(lo[0], *hi);
    swap_if_greater(lo[1], *hi);
    swap_if_greater(lo[0], lo[1]);
    const KeyedIndex pivot = lo[1];
    const auto [i, j] = exchange_rest(exchange_blocks({lo + 1, hi}, pivot.key), pivot.key);
    lo[1] = *j;
    *j = pivot;
    return {{lo, j - 1}, {i, hi}};
}

// Straight insertion keeps equal keys in order, so counting the smaller ones in front of each
// element, without a branch, gives the same order.
void sort_few(Range range) {
    const int size = static_cast<int>(range.gap()) + 1;
    std::array<KeyedIndex, kInsertionGap> item;
    std::array<int, kInsertionGap> rank{};
    std::copy_n(range.lo, size, item.begin());
    for (int high = 1; high < size; ++high) {
        for (int low = 0; low < high; ++low) {
            const int above = item[low].key > item[high].key ? 1 : 0;
            rank[low] += above;
            rank[high] += 1 - above;
        }
    }
    for (int k = 0; k < size; ++k) range.lo[rank[k]] = item[k];
}

}  // namespace

void sort_keyed(std::span<KeyedIndex> items) {
    if (items.size() < 2) return;
    std::vector<Range> waiting;
    Range range{items.data(), items.data() + items.size() - 1};
    for (;;) {
        if (range.gap() < kInsertionGap) {
            sort_few(range);
            if (waiting.empty()) return;
            range = waiting.back();
            waiting.pop_back();
            continue;
        }
        const auto [left, right] = partition(range);
        const bool right_waits = right.gap() >= left.gap();
        waiting.push_back(right_waits ? right : left);
        range = right_waits ? left : right;
    }
}

}  // namespace vort
