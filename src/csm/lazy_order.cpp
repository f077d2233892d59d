#include "csm/lazy_order.h"

#include <numeric>
#include <utility>

#include "csm/twin_markers.h"

namespace vort {

namespace {

// Of Quickindex: ranges of up to this many items and one are sorted by insertion.
constexpr int kInsertionGap = 7;

// Shorter ranges are not worth the limits of a pivot.
constexpr int kLongRange = 256;

}  // namespace

// How pairs compare with a pivot, by their codes as far as possible.
class LazyOrder::CodePivot {
  public:
    CodePivot(LazyOrder& order, int pair)
        : order_(order),
          codes_(order.codes_),
          pvalue_(order.pvalue(pair)),
          limits_(order.bounds_.limits(pvalue_)) {}

    bool is_above(int pair) const {
        const PairCode code = codes_[static_cast<std::size_t>(pair) - 1];
        const int freedom = freedom_of(code);
        if (code < limits_.from[freedom]) return false;
        if (code >= limits_.to[freedom]) return pvalue_ != 0;
        return order_.pvalue(pair) < pvalue_;
    }
    bool is_below(int pair) const {
        const PairCode code = codes_[static_cast<std::size_t>(pair) - 1];
        const int freedom = freedom_of(code);
        if (code < limits_.from[freedom]) return true;
        if (code >= limits_.to[freedom]) return false;
        return order_.pvalue(pair) > pvalue_;
    }

  private:
    LazyOrder& order_;
    std::span<const PairCode> codes_;
    double pvalue_;
    CodeLimits limits_;
};

// The same by p-values only.
class LazyOrder::KnownPivot {
  public:
    KnownPivot(LazyOrder& order, int pair) : order_(order), pvalue_(order.pvalue(pair)) {}
    bool is_above(int pair) const { return order_.pvalue(pair) < pvalue_; }
    bool is_below(int pair) const { return order_.pvalue(pair) > pvalue_; }

  private:
    LazyOrder& order_;
    double pvalue_;
};

LazyOrder::LazyOrder(const MarkerPlanes& markers, std::span<const PairCode> codes,
                     const PairBounds& bounds, const ExactPairs& exact)
    : codes_(codes),
      bounds_(bounds),
      exact_(exact),
      numbers_(markers.markers()),
      twin_marker_(first_twins(markers)),
      items_(codes.size() + 1) {
    std::iota(items_.data(), items_.data() + codes.size() + 1, 0);
}

std::int64_t LazyOrder::twin(int pair) const {
    const auto [first, second] = numbers_.markers_of(pair);
    return static_cast<std::int64_t>(twin_marker_.size()) * twin_marker_[first] +
           twin_marker_[second];
}

void LazyOrder::know(std::span<const int> pairs, std::span<const double> pvalues) {
    for (std::size_t k = 0; k < pairs.size(); ++k) known_.emplace(twin(pairs[k]), pvalues[k]);
}

double LazyOrder::pvalue(int pair) {
    const auto [entry, is_new] = known_.emplace(twin(pair), 0);
    if (is_new) entry->second = exact_.pvalue(pair);
    return entry->second;
}

void LazyOrder::insertion_sort(Places range) {
    int* const items = items_.data();
    for (int j = range.lo + 1; j <= range.hi; ++j) {
        const int item = items[j];
        const double key = pvalue(item);
        int i = j - 1;
        for (; i >= range.lo && pvalue(items[i]) > key; --i) items[i + 1] = items[i];
        items[i + 1] = item;
    }
}

void LazyOrder::swap_if_greater(int first, int second) {
    int* const items = items_.data();
    if (pvalue(items[first]) > pvalue(items[second])) std::swap(items[first], items[second]);
}

void LazyOrder::place_pivot(Places range) {
    const auto [lo, hi] = range;
    std::swap(items_.data()[lo + (hi - lo) / 2], items_.data()[lo + 1]);
    swap_if_greater(lo, hi);
    swap_if_greater(lo + 1, hi);
    swap_if_greater(lo, lo + 1);
}

template <typename Pivot>
LazyOrder::Parts LazyOrder::split_by(const Pivot& pivot, Places range) {
    int* const items = items_.data();
    int i = range.lo + 1;
    int j = range.hi;
    for (;;) {
        do ++i;
        while (pivot.is_above(items[i]));
        do --j;
        while (pivot.is_below(items[j]));
        if (j < i) break;
        std::swap(items[i], items[j]);
    }
    std::swap(items[range.lo + 1], items[j]);
    return {{range.lo, j - 1}, {i, range.hi}};
}

LazyOrder::Parts LazyOrder::split(Places range) {
    place_pivot(range);
    const int pivot = items_.data()[range.lo + 1];
    if (range.hi - range.lo < kLongRange) return split_by(KnownPivot(*this, pivot), range);
    return split_by(CodePivot(*this, pivot), range);
}

std::vector<int> LazyOrder::first(int wanted) {
    std::vector<Places> waiting{{1, static_cast<int>(codes_.size())}};
    while (!waiting.empty()) {
        const Places range = waiting.back();
        waiting.pop_back();
        if (range.lo > wanted) continue;
        if (range.hi - range.lo < kInsertionGap) {
            insertion_sort(range);
            continue;
        }
        const auto [left, right] = split(range);
        waiting.push_back(left);
        waiting.push_back(right);
    }
    return {items_.data() + 1, items_.data() + 1 + wanted};
}

}  // namespace vort
