// The body of SortKernel, for the sources that compile it, once for each set of instructions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "numeric/lanes.h"
#include "numeric/sort_kernel.h"

namespace vort {

namespace sorting {

constexpr int kInsertionGap = 7;  // a range of at most as many elements is not split
constexpr int kDeepest = 32;      // the larger part of a range waits, so at most one for each bit

static_assert(sizeof(KeyedIndex) == 16);

// An element in a register: the key in the first half.
using Item [[gnu::vector_size(16)]] = double;
using ItemBits [[gnu::vector_size(16)]] = std::int64_t;

[[gnu::always_inline]] inline Item load(const KeyedIndex* from) {
    Item item;
    std::memcpy(&item, from, sizeof item);
    return item;
}
[[gnu::always_inline]] inline void store(const Item& item, KeyedIndex* to) {
    std::memcpy(to, &item, sizeof item);
}
[[gnu::always_inline]] inline void exchange(KeyedIndex* a, KeyedIndex* b) {
    const Item item = load(a);
    store(load(b), a);
    store(item, b);
}
// Without a branch: which of two keys is the larger cannot be foreseen.
[[gnu::always_inline]] inline void exchange_if_greater(Item& first, Item& second) {
    const ItemBits greater = first > second;
    const ItemBits by_key = __builtin_shufflevector(greater, greater, 0, 0);
    const ItemBits difference =
        (reinterpret_cast<ItemBits>(first) ^ reinterpret_cast<ItemBits>(second)) & by_key;
    first = reinterpret_cast<Item>(reinterpret_cast<ItemBits>(first) ^ difference);
    second = reinterpret_cast<Item>(reinterpret_cast<ItemBits>(second) ^ difference);
}

// The keys of as many elements as a register has doubles, in the order that costs least, and for
// each of them the bit of its element.
template <Instructions kInstructions>
struct Keys;

template <>
struct Keys<Instructions::kPortable> {
    using Types = Register<Instructions::kPortable>;
    static constexpr Types::Mask kBits = {1, 2};

    [[gnu::always_inline]] static Types::Doubles of(const Types::Doubles& a,
                                                    const Types::Doubles& b) {
        return __builtin_shufflevector(a, b, 0, 2);
    }
};

template <>
struct Keys<Instructions::kWide> {
    using Types = Register<Instructions::kWide>;
    static constexpr Types::Mask kBits = {1, 4, 2, 8};

    [[gnu::always_inline]] static Types::Doubles of(const Types::Doubles& a,
                                                    const Types::Doubles& b) {
        return __builtin_shufflevector(a, b, 0, 4, 2, 6);
    }
};

// Upward stops at keys that are not below the pivot, downward at keys that are not above it.
enum class Scan { kUpward, kDownward };

// Bit k of the result: whether the scan stops at window[k], k < kSize.
template <Instructions kInstructions, Scan kScan, int kSize>
[[gnu::always_inline]] inline std::uint64_t stops(const KeyedIndex* window, double pivot) {
    using Types = typename Keys<kInstructions>::Types;
    constexpr int kStep = Types::kSize;
    typename Types::Mask found{};
    for (int k = 0; k < kSize; k += kStep) {
        typename Types::Doubles a;
        typename Types::Doubles b;
        std::memcpy(&a, window + k, sizeof a);
        std::memcpy(&b, window + k + kStep / 2, sizeof b);
        const typename Types::Doubles key = Keys<kInstructions>::of(a, b);
        const typename Types::Mask passed = kScan == Scan::kUpward ? key < pivot : key > pivot;
        found |= ~passed & (Keys<kInstructions>::kBits << k);
    }
    return static_cast<std::uint64_t>(any_of_lanes(found));
}

// 0 <= n <= 64
[[gnu::always_inline]] inline std::uint64_t first_bits(std::ptrdiff_t n) {
    return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
}
[[gnu::always_inline]] inline int first_bit(std::uint64_t bits) {
    return __builtin_ctzll(bits);
}
[[gnu::always_inline]] inline int last_bit(std::uint64_t bits) {
    return 63 - __builtin_clzll(bits);
}

template <typename Value>
[[gnu::always_inline]] inline Value lower(Value a, Value b) {
    return a < b ? a : b;
}
template <typename Value>
[[gnu::always_inline]] inline Value higher(Value a, Value b) {
    return a < b ? b : a;
}

// The `size` elements that end with `last`, or, where there are not as many, the first ones.
[[gnu::always_inline]] inline KeyedIndex* window_up_to(KeyedIndex* last, std::ptrdiff_t size,
                                                       KeyedIndex* first) {
    return last - first < size - 1 ? first : last - (size - 1);
}

// Both scans have stopped before the next element to look at: i moves up from it, j down.
struct Scans {
    KeyedIndex* i;
    KeyedIndex* j;
};

// From the first to the last element.
struct KeyRange {
    KeyedIndex* lo;
    KeyedIndex* hi;
    [[gnu::always_inline]] std::ptrdiff_t gap() const { return hi - lo; }
};

// The last exchanges, where all elements between the scans lie in a window of kSize; returns where
// the scans stop for good. An element that one scan put in place stops the other one there.
template <Instructions kInstructions, int kSize>
[[gnu::always_inline]] inline Scans exchange_rest(Scans scans, KeyedIndex* window, double pivot) {
    const std::uint64_t between = first_bits(scans.j - window) & ~first_bits(scans.i - window + 1);
    std::uint64_t low = stops<kInstructions, Scan::kUpward, kSize>(window, pivot) & between;
    std::uint64_t high = stops<kInstructions, Scan::kDownward, kSize>(window, pivot) & between;
    while (low != 0 && high != 0) {
        const int i = first_bit(low);
        const int j = last_bit(high);
        if (i >= j) break;
        exchange(window + i, window + j);
        scans = {window + i, window + j};
        low &= low - 1;
        high ^= std::uint64_t{1} << j;
    }
    KeyedIndex* const i = low != 0 ? lower(window + first_bit(low), scans.j) : scans.j;
    KeyedIndex* const j = high != 0 ? higher(window + last_bit(high), scans.i) : scans.i;
    if (i == j) return {i + 1, j - 1};  // both met on a key equal to the pivot
    return {i, j};
}

// Up to a window of elements at one end of what lies between the scans, and the stops among them
// that have no counterpart yet: bits of the window.
struct ScanBlock {
    KeyedIndex* begin;
    int size = 0;
    KeyedIndex* window = nullptr;
    std::uint64_t stops = 0;

    [[gnu::always_inline]] std::uint64_t bits() const {
        return first_bits(size) << (begin - window);
    }
};

// Moves both scans on through a range of at least a window, block by block: the k-th stop upward
// and the k-th stop downward are exchanged.
template <Instructions kInstructions>
Scans exchange_all(Scans scans, KeyRange range, double pivot) {
    constexpr int kSize = kSortWindow;
    ScanBlock left{scans.i + 1};
    ScanBlock right{scans.j};
    std::ptrdiff_t middle = right.begin - left.begin;  // elements that are in no block yet
    for (;;) {
        if (left.stops == 0) {
            left.begin += left.size;
            left.size = static_cast<int>(lower<std::ptrdiff_t>(kSize, middle));
            middle -= left.size;
            if (left.size == 0) break;
            left.window = lower(left.begin, range.hi - (kSize - 1));
            left.stops =
                stops<kInstructions, Scan::kUpward, kSize>(left.window, pivot) & left.bits();
        }
        if (right.stops == 0) {
            right.size = static_cast<int>(lower<std::ptrdiff_t>(kSize, middle));
            right.begin -= right.size;
            middle -= right.size;
            if (right.size == 0) break;
            right.window = window_up_to(right.begin + right.size - 1, kSize, range.lo);
            right.stops =
                stops<kInstructions, Scan::kDownward, kSize>(right.window, pivot) & right.bits();
        }
        const int on_left = __builtin_popcountll(left.stops);
        const int on_right = __builtin_popcountll(right.stops);
        for (int pairs = lower(on_left, on_right); pairs > 0; --pairs) {
            const int i = first_bit(left.stops);
            const int j = last_bit(right.stops);
            exchange(left.window + i, right.window + j);
            left.stops &= left.stops - 1;
            right.stops ^= std::uint64_t{1} << j;
        }
    }
    // Everything has been looked at; what one side has left is sorted out within its block.
    if (left.stops != 0) {
        KeyedIndex* const i = left.window + first_bit(left.stops);
        return exchange_rest<kInstructions, kSize>({i - 1, left.begin + left.size}, left.window,
                                                   pivot);
    }
    if (right.stops != 0) {
        KeyedIndex* const j = right.window + last_bit(right.stops);
        return exchange_rest<kInstructions, kSize>({right.begin - 1, j + 1}, right.window, pivot);
    }
    return {right.begin, right.begin - 1};
}

struct Parts {
    KeyRange left;
    KeyRange right;
};

// `first` is where the whole array begins.
template <Instructions kInstructions>
[[gnu::always_inline]] inline Parts partition(KeyRange range, KeyedIndex* first) {
    const auto [lo, hi] = range;
    KeyedIndex* const middle = lo + range.gap() / 2;
    Item a = load(lo);
    Item pivot = load(middle);
    Item c = load(hi);
    exchange(middle, lo + 1);
    exchange_if_greater(a, c);
    exchange_if_greater(pivot, c);
    exchange_if_greater(a, pivot);
    store(a, lo);
    store(pivot, lo + 1);
    store(c, hi);
    const double key = pivot[0];
    const Scans start{lo + 1, hi};
    const auto window = [=](int size) { return window_up_to(range.hi, size, first); };
    const auto [i, j] =
        range.gap() < 16   ? exchange_rest<kInstructions, 16>(start, window(16), key)
        : range.gap() < 32 ? exchange_rest<kInstructions, 32>(start, window(32), key)
        : range.gap() < 64 ? exchange_rest<kInstructions, 64>(start, window(64), key)
                           : exchange_all<kInstructions>(start, range, key);
    exchange(lo + 1, j);
    return {{lo, j - 1}, {i, hi}};
}

// Straight insertion keeps equal keys in order, so counting the smaller ones in front of each
// element, without a branch, gives the same order.
[[gnu::always_inline]] inline void sort_few(KeyRange range) {
    const int size = static_cast<int>(range.gap()) + 1;
    KeyedIndex item[kInsertionGap];
    int rank[kInsertionGap] = {};
    for (int k = 0; k < size; ++k) item[k] = range.lo[k];
    for (int high = 1; high < size; ++high) {
        for (int low = 0; low < high; ++low) {
            const int above = item[low].key > item[high].key ? 1 : 0;
            rank[low] += above;
            rank[high] += 1 - above;
        }
    }
    for (int k = 0; k < size; ++k) range.lo[rank[k]] = item[k];
}

}  // namespace sorting

template <Instructions kInstructions>
void SortKernel<kInstructions>::sort(KeyedIndex* items, std::size_t size, std::size_t wanted) {
    using namespace sorting;
    KeyRange waiting[kDeepest];
    int waiting_count = 0;
    KeyRange range{items, items + size - 1};
    const KeyedIndex* const behind_wanted = items + wanted;
    for (;;) {
        if (range.gap() < kInsertionGap) {
            sort_few(range);
            if (waiting_count == 0) return;
            range = waiting[--waiting_count];
            continue;
        }
        const auto [left, right] = partition<kInstructions>(range, items);
        if (right.lo >= behind_wanted) {
            range = left;
            continue;
        }
        const bool right_waits = right.gap() >= left.gap();
        waiting[waiting_count++] = right_waits ? right : left;
        range = right_waits ? left : right;
    }
}

}  // namespace vort
