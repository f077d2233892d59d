#include "numeric/label_runs.h"

#include <algorithm>

#include "numeric/random_order.h"

namespace vort {

namespace {

constexpr int kBits = 64;
constexpr int kDrawsAtOnce = Generator::kStretch;

}  // namespace

// Runs have labels 1, 0, 1, 0 and end where the label changes; those behind the last item are
// empty.
LabelRuns::LabelRuns(std::span<const unsigned char> labels, Instructions instructions)
    : instructions_(instructions), labels_(labels.begin(), labels.end()) {
    std::fill(std::begin(ends_), std::end(ends_), n());
    int run = 0;
    for (int i = 0; i < n() && few_runs_; ++i) {
        const bool label_of_run = run % 2 == 0;
        if ((labels[i] != 0) == label_of_run) continue;
        few_runs_ = run + 1 < kMostRuns;
        if (few_runs_) ends_[run++] = i;
    }
}

void LabelRuns::draw(Generator start, const Generator::Skip& apart, int orders,
                     std::uint64_t* planes) const {
    if (few_runs_ && start.stretch()) return draw_runs(start, apart, orders, planes);
    draw_orders(start, apart, orders, planes);
}

void LabelRuns::draw_runs(Generator start, const Generator::Skip& apart, int orders,
                          std::uint64_t* planes) const {
    static const Generator::Skip stretch(kDrawsAtOnce);
    const auto draw =
        kernel_for(instructions_, []<Instructions I>() { return LabelRunKernel<I>::draw; });
    Generator generators[kOrdersAtOnce];
    LabelRunLanes lanes;
    for (int l = 0; l < kOrdersAtOnce; ++l) {
        generators[l] = start;
        if (l < orders) start.skip(apart);
        for (int e = 0; e < LabelRunLanes::kEnds; ++e) lanes.ends[e][l] = ends_[e];
    }
    const int n = this->n();
    for (int left = n; left > 0;) {
        const int size = std::min(left, kDrawsAtOnce);
        for (int l = 0; l < kOrdersAtOnce; ++l) {
            lanes.from[l] = *generators[l].stretch();
            generators[l].skip(stretch);
        }
        const int words = (size + kBits - 1) / kBits;
        draw(lanes, orders, left, words, {planes + (n - left) / kBits, plane_words()});
        left -= size;
    }
    for (int l = 0; l < orders && n % kBits != 0; ++l) {
        planes[(l + 1) * plane_words() - 1] &= ~std::uint64_t{0} >> (kBits - n % kBits);
    }
}

void LabelRuns::draw_orders(Generator start, const Generator::Skip& apart, int orders,
                            std::uint64_t* planes) const {
    RandomOrder space(instructions_);
    std::vector<int> order(labels_.size());
    std::fill_n(planes, static_cast<std::size_t>(orders) * plane_words(), 0);
    for (; orders > 0; --orders, planes += plane_words()) {
        Generator own = start;
        space.draw(own, order);
        start.skip(apart);
        for (std::size_t c = 0; c < order.size(); ++c) {
            const std::uint64_t label = labels_[order[c]] != 0 ? 1 : 0;
            planes[c / kBits] |= label << (c % kBits);
        }
    }
}

}  // namespace vort
