// A data set's screening shows, of the four p-values of every marker, the smallest, and the others
// only where they are at most 0.002. The statistics are cheap (eight markers side by side), the
// p-values are not, and most need not be known:
//
//   - under one degree of freedom a larger statistic means a smaller p-value, so of the additive,
//     dominant and recessive models the largest statistic decides;
//   - a genotype statistic y on two degrees of freedom has the p-value exp(-y / 2), and a table
//     tells, for every statistic x on one degree, the y that is as improbable.
//
// So one p-value for each marker is the rule. The p-values that the program computes follow these
// laws only up to the accuracy of their series, about 3e-7, so a model is only left out where it
// loses by a margin far beyond that; models that come close are all computed, and the smallest
// value is taken. Example: statistics 3.84, 1.2, 0.5 and 4.5 (two degrees) need the first alone:
// as improbable as 3.84 would be 5.99.
//
// Cost: 33 divisions a marker, and 1.02 p-values instead of four.
#include "screening/minimum_screening.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "numeric/distributions.h"

namespace vort {

namespace {

// Statistics below these have p-values above kSignificant (9.55 and 12.43 give 0.002).
constexpr double kSignificantFrom[3] = {0, 9.5, 12.4};

constexpr double kPairMargin = 1e-3;  // of two-degree statistics

// The statistic on two degrees of freedom that is as improbable as one on a single degree.
class EquivalentStatistic {
  public:
    EquivalentStatistic() {
        for (int i = 0; i <= kSteps + 1; ++i) {
            value_[i] = -2 * std::log(1 - pchisq(1, i / kStepsOfOne));
        }
    }

    // A genotype statistic below the first is less significant than x, one above the second more.
    std::pair<double, double> bounds(double x) const {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        if (x >= kLimit) return {-kInfinity, kInfinity};
        const auto step = static_cast<int>(x * kStepsOfOne);
        return {value_[step] - kPairMargin, value_[step + 1] + kPairMargin};
    }

  private:
    // Beyond this statistic p-values have too few digits left to compare by.
    static constexpr double kLimit = 40;
    static constexpr double kStepsOfOne = 32;
    static constexpr int kSteps = static_cast<int>(kLimit * kStepsOfOne);

    std::array<double, kSteps + 2> value_;
};

const EquivalentStatistic& equivalent_statistic() {
    static const EquivalentStatistic table;
    return table;
}

}  // namespace

MinimumScreening::MinimumScreening(const CountedDataSets& counts, int markers, GroupSizes sizes,
                                   MissingLimits limits, Instructions instructions)
    : counts_(counts),
      markers_(markers),
      sizes_(sizes),
      limits_(limits),
      instructions_(instructions),
      queue_(instructions, kModels * kMarkerBlock) {}

bool MinimumScreening::fits(GroupSizes sizes) {
    return std::int64_t{4} * sizes.cases * sizes.controls < std::numeric_limits<int>::max();
}

void MinimumScreening::compute_block(const int* packed, int first, int size) {
    std::array<int, kMarkerBlock> last{};
    if (size < kMarkerBlock) std::copy_n(packed + first, size, last.begin());
    const auto compute =
        kernel_for(instructions_, []<Instructions I>() { return FiveModelKernel<I>::compute; });
    compute(counts_.columns(first), size < kMarkerBlock ? last.data() : packed + first, sizes_,
            block_);
}

bool MinimumScreening::is_dropped(int slot) const {
    return sizes_.cases - block_.table.R[slot] > limits_.cases ||
           sizes_.controls - block_.table.S[slot] > limits_.controls;
}

MinimumScreening::Models MinimumScreening::models_of(int slot) const {
    return {{{1, block_.statistics.additive[slot]},
             {1, block_.statistics.dominant[slot]},
             {1, block_.statistics.recessive[slot]},
             {static_cast<int>(block_.statistics.classes[slot]) - 1,
              block_.statistics.genotype[slot]}}};
}

// A marker of one genotype has no degree of freedom left, and the p-value 1.
void MinimumScreening::list_significant(int slot, int marker) {
    const Models models = models_of(slot);
    for (int model = 0; model < kModels; ++model) {
        const auto [df, statistic] = models[model];
        if (df < 1 || statistic < kSignificantFrom[df]) continue;
        const double pvalue = 1 - pchisq(df, statistic);
        if (!(pvalue <= kSignificant)) continue;
        if (is_dropped(slot)) {
            ++result_.dropped_significant[model];
        } else {
            result_.significant[model].push_back({marker, pvalue});
        }
    }
}

// Which statistic wins cannot be foreseen, so that the usual cases share one way.
void MinimumScreening::queue_candidates(int slot, int marker) {
    const auto& [table, statistics, leaders] = block_;
    const double largest = leaders.largest[slot];
    const double genotype = statistics.genotype[slot];
    const auto [below, above] = equivalent_statistic().bounds(largest);
    const bool two_degrees = statistics.classes[slot] == 3;
    const bool alone = two_degrees & (genotype > above);
    queue_.add_if(two_degrees & (genotype >= below), 2, genotype, marker - 1);
    if (leaders.close[slot] == 1) {
        queue_.add_if(!alone, 1, largest, marker - 1);
        return;
    }
    const double from = lower_end_of_close(largest);
    for (const Model& model : models_of(slot)) {
        queue_.add_if(!alone & (model.df == 1) & (model.statistic >= from), 1, model.statistic,
                      marker - 1);
    }
}

void MinimumScreening::list_minimum_significant() {
    for (const auto& [pvalue, marker] : result_.minimum) {
        if (pvalue <= kMinimumSignificant) result_.minimum_significant.push_back({marker, pvalue});
    }
}

ScreeningResult& MinimumScreening::screen(const int* packed) {
    const auto keep_smaller = [this](int column, double pvalue) {
        double& minimum = result_.minimum[column].key;
        minimum = std::min(minimum, pvalue);
    };
    result_.clear();
    result_.minimum.resize(static_cast<std::size_t>(markers_));
    for (int first = 0; first < markers_; first += kMarkerBlock) {
        const int size = std::min(kMarkerBlock, markers_ - first);
        compute_block(packed, first, size);
        for (int slot = 0; slot < size; ++slot) {
            const int marker = first + slot + 1;
            result_.minimum[marker - 1] = {1.0, marker};
            const bool dropped = is_dropped(slot);
            if (dropped) ++result_.dropped;
            // Such a marker has no statistics.
            if (block_.table.R[slot] == 0 || block_.table.S[slot] == 0) continue;
            const double largest =
                std::max(block_.leaders.largest[slot], block_.statistics.genotype[slot]);
            if (largest >= kSignificantFrom[1]) list_significant(slot, marker);
            if (!dropped) queue_candidates(slot, marker);
        }
        queue_.take_eights(keep_smaller);
    }
    queue_.take(keep_smaller);
    list_minimum_significant();
    return result_;
}

}  // namespace vort
