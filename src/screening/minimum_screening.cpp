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
// Cost: some 25 divisions a marker, and 1.02 p-values instead of four.
#include "screening/minimum_screening.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "numeric/distributions.h"

namespace vort {

namespace {

// Statistics below these have p-values above kSignificant (9.55 and 12.43 give 0.002).
constexpr double kSignificantFrom[3] = {0, 9.5, 12.4};

constexpr double kMargin = 1e-4;      // of one-degree statistics, absolute and relative
constexpr double kPairMargin = 1e-3;  // of two-degree statistics

// The statistic on two degrees of freedom that is as improbable as one on a single degree.
class EquivalentStatistic {
  public:
    // Beyond this statistic p-values have too few digits left to compare by.
    static constexpr double kLimit = 40;

    EquivalentStatistic() {
        for (int i = 0; i <= kSteps + 1; ++i) {
            value_[i] = -2 * std::log(1 - pchisq(1, i / kStepsOfOne));
        }
    }

    double below(double x) const { return value_[step(x)] - kPairMargin; }
    double above(double x) const { return value_[step(x) + 1] + kPairMargin; }

  private:
    static constexpr double kStepsOfOne = 32;
    static constexpr int kSteps = static_cast<int>(kLimit * kStepsOfOne);
    static int step(double x) { return static_cast<int>(x * kStepsOfOne); }

    std::array<double, kSteps + 2> value_;
};

template <typename Models>
bool any_may_be_significant(const Models& models) {
    double largest = 0;
    for (const auto& model : models) largest = std::max(largest, model.statistic);
    return largest >= kSignificantFrom[1];
}

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

void MinimumScreening::load_block(const int* packed, int first, int size) {
    for (int slot = 0; slot < size; ++slot) {
        const int j = first + slot;
        const TopCounts& all = counts_.total(j);
        const TopCounts cases = counts_.cases(j, packed[j]);
        const int control_missing = all.missing - cases.missing;
        const int R = sizes_.cases - cases.missing;
        const int S = sizes_.controls - control_missing;
        const int b1 = all.one - cases.one;
        const int b2 = all.two - cases.two;
        table_.a0[slot] = R - cases.one - cases.two;
        table_.a1[slot] = cases.one;
        table_.a2[slot] = cases.two;
        table_.b0[slot] = S - b1 - b2;
        table_.b1[slot] = b1;
        table_.b2[slot] = b2;
        table_.R[slot] = R;
        table_.S[slot] = S;
        const bool drop = cases.missing > limits_.cases || control_missing > limits_.controls;
        const bool untestable = R == 0 || S == 0;
        state_[slot] = drop ? State::kDropped : untestable ? State::kUntestable : State::kTested;
    }
}

MinimumScreening::Models MinimumScreening::models_of(int slot) const {
    return {{{1, statistics_.additive[slot]},
             {1, statistics_.dominant[slot]},
             {1, statistics_.recessive[slot]},
             {static_cast<int>(statistics_.classes[slot]) - 1, statistics_.genotype[slot]}}};
}

// A marker of one genotype has no degree of freedom left, and the p-value 1.
void MinimumScreening::list_significant(int slot, int marker, const Models& models) {
    for (int model = 0; model < kModels; ++model) {
        const auto [df, statistic] = models[model];
        if (df < 1 || statistic < kSignificantFrom[df]) continue;
        const double pvalue = 1 - pchisq(df, statistic);
        if (!(pvalue <= kSignificant)) continue;
        if (state_[slot] == State::kDropped) {
            ++result_.dropped_significant[model];
        } else {
            result_.significant[model].push_back({marker, pvalue});
        }
    }
}

void MinimumScreening::queue_candidates(int slot, const Models& models) {
    const Model& genotype = models[3];
    double largest = std::max({models[0].statistic, models[1].statistic, models[2].statistic});
    if (genotype.df == 1) largest = std::max(largest, genotype.statistic);
    const bool compare = genotype.df == 2 && largest < EquivalentStatistic::kLimit;
    if (compare && genotype.statistic > equivalent_statistic().above(largest)) {
        queue_.add(2, genotype.statistic, slot);
        return;
    }
    if (genotype.df == 2 &&
        (!compare || genotype.statistic >= equivalent_statistic().below(largest))) {
        queue_.add(2, genotype.statistic, slot);
    }
    // Which model is the largest cannot be foreseen, but that it stands alone can.
    const double close = largest - (kMargin + kMargin * largest);
    int candidates = 0;
    for (const Model& model : models) {
        candidates += static_cast<int>(model.df == 1) & static_cast<int>(model.statistic >= close);
    }
    if (candidates == 1) return queue_.add(1, largest, slot);
    for (const Model& model : models) {
        if (model.df == 1 && model.statistic >= close) queue_.add(1, model.statistic, slot);
    }
}

void MinimumScreening::finish_block(int first, int size) {
    queue_.take(
        [this](int slot, double pvalue) { minimum_[slot] = std::min(minimum_[slot], pvalue); });
    for (int slot = 0; slot < size; ++slot) {
        const int marker = first + slot + 1;
        result_.minimum[marker - 1] = {minimum_[slot], marker};
        if (minimum_[slot] <= kMinimumSignificant) {
            result_.minimum_significant.push_back({marker, minimum_[slot]});
        }
    }
}

ScreeningResult& MinimumScreening::screen(const int* packed) {
    const auto compute_statistics =
        kernel_for(instructions_, []<Instructions I>() { return FiveModelKernel<I>::statistics; });
    result_.clear();
    result_.minimum.resize(static_cast<std::size_t>(markers_));
    for (int first = 0; first < markers_; first += kMarkerBlock) {
        const int size = std::min(kMarkerBlock, markers_ - first);
        load_block(packed, first, size);
        compute_statistics(table_, statistics_);
        minimum_.fill(1.0);
        for (int slot = 0; slot < size; ++slot) {
            if (state_[slot] == State::kDropped) ++result_.dropped;
            if (table_.R[slot] == 0 || table_.S[slot] == 0) continue;
            const Models models = models_of(slot);
            if (any_may_be_significant(models)) list_significant(slot, first + slot + 1, models);
            if (state_[slot] == State::kTested) queue_candidates(slot, models);
        }
        finish_block(first, size);
    }
    return result_;
}

}  // namespace vort
