// A screening shows, of the four p-values of every marker, the smallest, and the others
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
#include "screening/stretch_screening.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "numeric/distributions.h"
#include "screening/five_model_statistics.h"

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
            value_[i] = -2 * std::log(1 - lower_tail_chi_square(1, i / kStepsOfOne).value);
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

// Data sets whose planes of cases are looked at together.
constexpr int kDataSetsAtOnce = 16;

// Columns whose planes stay in the second cache.
std::size_t columns_of_a_tile(std::size_t words) {
    constexpr std::size_t kTileWords = std::size_t{1} << 15;
    return std::clamp<std::size_t>(kTileWords / (3 * words), 1, kMarkerBlock);
}

}  // namespace

CasePlanes::CasePlanes(const PhenotypeRows& phenotypes, int first, int count)
    : count_(count),
      words_((plane_words(phenotypes.individuals()) + kWordBlock - 1) / kWordBlock * kWordBlock),
      planes_((static_cast<std::size_t>(count) + 1) * words_) {
    for (int d = 0; d < count; ++d) phenotypes.cases(first + d, planes_.data() + d * words_);
    std::fill_n(planes_.end() - static_cast<std::ptrdiff_t>(words_), words_, ~std::uint64_t{0});
}

StretchScreening::StretchScreening(const ScreeningStudy& study, const CasePlanes& cases)
    : study_(study),
      cases_(cases),
      queue_(study.instructions, kModels * kMarkerBlock),
      tile_columns_(columns_of_a_tile(cases.words())),
      tile_(tile_columns_ * 3 * cases.words()),
      everybody_(kMarkerBlock),
      counts_(static_cast<std::size_t>(cases.count()) * kMarkerBlock) {}

void StretchScreening::screen(int first, int size, const MinimaRows& minima,
                              std::span<Findings> findings) {
    findings_ = findings;
    first_ = first;
    const auto keep_smaller = [&](int tag, double pvalue) {
        double& minimum = minima.row(tag / kStretch)[first + tag % kStretch];
        minimum = std::min(minimum, pvalue);
    };
    for (int d = 0; d < cases_.count(); ++d) std::fill_n(minima.row(d) + first, size, 1.0);
    for (int block = 0; block < size; block += kMarkerBlock) {
        const int columns = std::min(kMarkerBlock, size - block);
        count_block(first + block, columns);
        for (int d = 0; d < cases_.count(); ++d) {
            compute_block(d);
            for (int slot = 0; slot < columns; ++slot) test_marker(d, block, slot);
            queue_.take_eights(keep_smaller);
        }
    }
    queue_.take(keep_smaller);
    for (int d = 0; d < cases_.count(); ++d) {
        list_minimum_significant(d, minima.row(d), size);
    }
}

// Tile by tile: its planes stay in the second cache while all data sets are counted, a stretch of
// words at a time.
void StretchScreening::count_block(int first, int columns) {
    const std::size_t words = cases_.words();
    const auto count =
        kernel_for(study_.instructions, []<Instructions I>() { return CountKernel<I>::count; });
    std::fill(counts_.begin(), counts_.end(), PlaneCounts{});
    std::fill(everybody_.begin(), everybody_.end(), PlaneCounts{});
    for (int done = 0; done < columns;) {
        const int tile = std::min(static_cast<int>(tile_columns_), columns - done);
        load_tile(first + done, tile);
        for (std::size_t w = 0; w < words; w += kCountedWords) {
            const std::size_t size = std::min(kCountedWords, words - w);
            const PlaneRows planes{tile_.data() + w, words, 3 * tile};
            count(planes, {cases_.everybody() + w, words, 1}, size, everybody_.data() + done, 0);
            for (int d = 0; d < cases_.count(); d += kDataSetsAtOnce) {
                const int sets = std::min(kDataSetsAtOnce, cases_.count() - d);
                count(planes, {cases_.plane(d) + w, words, sets}, size,
                      counts_.data() + static_cast<std::size_t>(d) * kMarkerBlock + done,
                      kMarkerBlock);
            }
        }
        done += tile;
    }
}

void StretchScreening::load_tile(int first, int columns) {
    const std::size_t words = cases_.words();
    for (int c = 0; c < columns; ++c) {
        std::uint64_t* const at = tile_.data() + 3 * static_cast<std::size_t>(c) * words;
        study_.genotypes.planes(first + c, {at, at + words, at + 2 * words});
    }
}

void StretchScreening::compute_block(int d) {
    const PlaneCounts* const in_cases = counts_.data() + static_cast<std::size_t>(d) * kMarkerBlock;
    const auto compute = kernel_for(study_.instructions,
                                    []<Instructions I>() { return FiveModelKernel<I>::compute; });
    compute(everybody_.data(), in_cases, study_.sizes, block_);
}

void StretchScreening::test_marker(int d, int block, int slot) {
    const bool dropped = is_dropped(slot);
    if (dropped) ++findings_[d].dropped;
    // Such a marker has no statistics.
    if (block_.table.R[slot] == 0 || block_.table.S[slot] == 0) return;
    const double largest = std::max(block_.leaders.largest[slot], block_.statistics.genotype[slot]);
    if (largest >= kSignificantFrom[1]) {
        list_significant(slot, first_ + block + slot + 1, dropped, findings_[d]);
    }
    if (!dropped) queue_candidates(slot, d * kStretch + block + slot);
}

bool StretchScreening::is_dropped(int slot) const {
    return study_.sizes.cases - block_.table.R[slot] > study_.limits.cases ||
           study_.sizes.controls - block_.table.S[slot] > study_.limits.controls;
}

StretchScreening::Models StretchScreening::models_of(int slot) const {
    return {{{1, block_.statistics.additive[slot]},
             {1, block_.statistics.dominant[slot]},
             {1, block_.statistics.recessive[slot]},
             {static_cast<int>(block_.statistics.classes[slot]) - 1,
              block_.statistics.genotype[slot]}}};
}

// A marker of one genotype has no degree of freedom left, and the p-value 1.
void StretchScreening::list_significant(int slot, int marker, bool dropped, Findings& out) const {
    const Models models = models_of(slot);
    for (int model = 0; model < kModels; ++model) {
        const auto [df, statistic] = models[model];
        if (df < 1 || statistic < kSignificantFrom[df]) continue;
        const double pvalue = 1 - lower_tail_chi_square(df, statistic).value;
        if (!(pvalue <= kSignificant)) continue;
        if (dropped) {
            ++out.dropped_significant[model];
        } else {
            out.significant[model].push_back({marker, pvalue});
        }
    }
}

// Which statistic wins cannot be foreseen, so that the usual cases share one way.
void StretchScreening::queue_candidates(int slot, int tag) {
    const auto& [table, statistics, leaders] = block_;
    const double largest = leaders.largest[slot];
    const double genotype = statistics.genotype[slot];
    const auto [below, above] = equivalent_statistic().bounds(largest);
    const bool two_degrees = statistics.classes[slot] == 3;
    const bool alone = two_degrees & (genotype > above);
    queue_.add_if(two_degrees & (genotype >= below), 2, genotype, tag);
    if (leaders.close[slot] == 1) {
        queue_.add_if(!alone, 1, largest, tag);
        return;
    }
    const double from = lower_end_of_close(largest);
    for (const Model& model : models_of(slot)) {
        queue_.add_if(!alone & (model.df == 1) & (model.statistic >= from), 1, model.statistic,
                      tag);
    }
}

void StretchScreening::list_minimum_significant(int d, const double* minima, int size) {
    for (int j = first_; j < first_ + size; ++j) {
        if (minima[j] > kMinimumSignificant) continue;
        findings_[d].minimum_significant.push_back({j + 1, minima[j]});
    }
}

}  // namespace vort
