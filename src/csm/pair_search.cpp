// The search of all pairs, by bounds first and by p-values where they matter.
//
// Of millions of pairs only those in front are kept, and only how many these are depends on the
// others. So p-values, whose bytes depend on the order of a thousand additions, are wanted of few
// pairs; of the others it is enough to know within a millionth where they lie:
//
//     pair_counts     the test of every pair from bit counts, in four bytes          all pairs
//     pair_bounds     what these say about the p-value
//     pair_census     how many pairs are in which range of p-values                  all pairs
//     step_up         the number kept, by bounds of the p-values at each place
//     exact_pairs     p-values of those about the cut and in front of it             few pairs
//     lazy_order      the order of equal p-values, as the sort would leave them      all pairs,
//                                                                                    if asked
//     plain_pairs     the search as it is defined, for other phenotypes
//
// The number kept is asked in three steps, each of which is asked only if the one before leaves it
// open: by the bins of the census, by the codes of the pairs in the undecided stretch, and by their
// p-values. Max_retain makes the first step enough for most data: it need only be known that the
// rule passes somewhere behind it.
//
// Then every pair that may be among the first kept + 1 gets its p-value. If these differ from each
// other, every sort gives the same order, and that is the result. If not, the exchanges of the
// program's sort decide (lazy_order).
//
// Example: 3,000 markers, 1,000 individuals, 4.5 million pairs, 100 kept. The codes take 65 ms, the
// passes over them 6 ms, the p-values of 101 pairs 0.2 ms; the plain form takes four seconds.
#include "csm/pair_search.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "csm/exact_pairs.h"
#include "csm/lazy_order.h"
#include "csm/pair_bounds.h"
#include "csm/pair_census.h"
#include "csm/pair_counts.h"
#include "csm/plain_pairs.h"
#include "csm/step_up.h"

namespace vort {

namespace {

using StepUp = PairSearchStatistics::StepUp;
using Order = PairSearchStatistics::Order;

// Places whose p-values are from `low` to `high`.
struct Stretch {
    double low;
    double high;
    KeptBounds places;
};

class BoundedSearch {
  public:
    BoundedSearch(const PairSearchInput& input, const StepUpRule& rule, int max_retain, int threads,
                  std::span<const PairCode> codes, const PairBounds& bounds)
        : markers_(input.markers),
          rule_(rule),
          max_retain_(max_retain),
          threads_(threads),
          codes_(codes),
          bounds_(bounds),
          exact_(input, codes, bounds),
          census_(codes, bounds, threads),
          bins_(census_.groups(), 0) {}

    PairSearchResult search() {
        PairSearchResult result;
        const int kept = number_kept(result.statistics);
        if (kept > 0) result.kept = first_pairs(kept, result.statistics);
        result.statistics.pvalues = exact_.computed();
        return result;
    }

  private:
    bool is_decided(const KeptBounds& bounds) const {
        return bounds.at_most <= bounds.at_least || bounds.at_least >= max_retain_;
    }
    int retained(std::int64_t passed) const {
        return static_cast<int>(std::min<std::int64_t>(max_retain_, passed));
    }

    int number_kept(PairSearchStatistics& statistics) const {
        statistics.step_up = StepUp::kBins;
        const KeptBounds by_bins = bins_.kept(rule_);
        if (is_decided(by_bins)) return retained(by_bins.at_least);

        statistics.step_up = StepUp::kBounds;
        Stretch stretch{bins_.low(by_bins.at_least + 1), bins_.high(by_bins.at_most), by_bins};
        const std::vector<int> pairs = census_.collect(stretch.low, stretch.high);
        const std::int64_t before = census_.below(stretch.low);
        narrow(stretch, pairs, before);
        if (is_decided(stretch.places)) return retained(stretch.places.at_least);

        statistics.step_up = StepUp::kPvalues;
        return retained(kept_in(stretch, pairs, before));
    }

    // Bounds the places again, by the codes of the pairs in the stretch. `before` pairs, for all
    // that is known, have any p-values below it.
    void narrow(Stretch& stretch, const std::vector<int>& pairs, std::int64_t before) const {
        std::map<PairCode, std::int64_t> counts;
        for (const int pair : pairs) ++counts[code_of(pair)];
        std::vector<PvalueGroup> groups;
        for (const auto& [code, count] : counts) {
            const PvalueBounds p = bounds_.of_code(code);
            groups.push_back({p.low, std::max(p.high, stretch.low), count});
        }
        const RankedGroups ranked(groups, before);
        const KeptBounds found = ranked.kept(rule_);
        KeptBounds& places = stretch.places;
        places.at_least = std::max(places.at_least, found.at_least);
        places.at_most = std::max(places.at_least, std::min(places.at_most, found.at_most));
        if (places.at_least == places.at_most) return;
        stretch.low = std::max(stretch.low, ranked.low(places.at_least + 1));
        stretch.high = std::min(stretch.high, ranked.high(places.at_most));
    }

    std::int64_t kept_in(const Stretch& stretch, const std::vector<int>& pairs,
                         std::int64_t before) const {
        std::vector<int> undecided;
        for (const int pair : pairs) {
            const PvalueBounds p = bounds_.of_code(code_of(pair));
            if (p.high < stretch.low) {
                ++before;
            } else if (p.low <= stretch.high) {
                undecided.push_back(pair);
            }
        }
        std::vector<double> pvalues = exact_.pvalues(undecided, threads_);
        std::sort(pvalues.begin(), pvalues.end());
        return kept_by_pvalues(rule_, pvalues, before, stretch.places);
    }

    // The first `kept` places.
    std::vector<int> first_pairs(int kept, PairSearchStatistics& statistics) const {
        const std::int64_t wanted = std::min<std::int64_t>(rule_.tests, std::int64_t{kept} + 1);
        std::vector<int> pairs;
        std::vector<double> pvalues;
        const bool two_zeros = wanted > 1 && bins_.high(2) == 0;
        if (!two_zeros) {
            pairs = census_.collect(0, bins_.high(wanted));
            pvalues = exact_.pvalues(pairs, threads_);
            if (sort_distinct(pairs, pvalues, static_cast<std::size_t>(wanted))) {
                statistics.order = Order::kDistinct;
                pairs.resize(static_cast<std::size_t>(kept));
                return pairs;
            }
        }
        statistics.order = Order::kTies;
        LazyOrder order(markers_, codes_, bounds_, exact_);
        order.know(pairs, pvalues);
        return order.first(kept);
    }

    // Sorts the pairs by their p-values; whether those of the first `wanted` differ. Leaves the
    // pairs as they are where they do not.
    static bool sort_distinct(std::vector<int>& pairs, const std::vector<double>& pvalues,
                              std::size_t wanted) {
        std::vector<std::pair<double, int>> sorted(pairs.size());
        for (std::size_t k = 0; k < pairs.size(); ++k) sorted[k] = {pvalues[k], pairs[k]};
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t k = 1; k < wanted; ++k) {
            if (sorted[k - 1].first == sorted[k].first) return false;
        }
        std::transform(sorted.begin(), sorted.end(), pairs.begin(),
                       [](const auto& entry) { return entry.second; });
        return true;
    }

    PairCode code_of(int pair) const { return codes_[static_cast<std::size_t>(pair) - 1]; }

    const MarkerPlanes& markers_;
    const StepUpRule& rule_;
    int max_retain_;
    int threads_;
    std::span<const PairCode> codes_;
    const PairBounds& bounds_;
    ExactPairs exact_;
    PairCensus census_;
    RankedGroups bins_;
};

// The two phenotype values that bounds can be had for.
std::optional<TwoValues> boundable_values(const PairSearchInput& input, const StepUpRule& rule) {
    if (!std::isfinite(input.sigma) || !(input.sigma > 0)) return std::nullopt;
    if (!std::isfinite(rule.cutoff) || !std::isfinite(rule.alpha)) return std::nullopt;
    const std::optional<TwoValues> values = two_values(input.phenotype);
    if (!values || !(statistic_error(*values, input.sigma) <= kLargestStatisticError)) {
        return std::nullopt;
    }
    return values;
}

}  // namespace

PairSearchResult search_pairs(const PairSearchInput& input, double fdr_cutoff, double alpha,
                              int max_retain, int threads, Transcript& transcript,
                              Instructions set) {
    const std::int64_t N = PairNumbers(input.markers.markers()).count();
    const StepUpRule rule{fdr_cutoff, alpha, N};
    PairSearchResult result;
    if (N == 0) return result;
    const std::optional<TwoValues> values = boundable_values(input, rule);
    if (!values) {
        result.kept = search_plainly(input, rule, max_retain, threads, transcript);
        result.statistics.order = Order::kPlain;
        result.statistics.pvalues = N;
        return result;
    }
    for (std::int64_t c = kAnnouncePairs; c <= N; c += kAnnouncePairs) announce_pair(c, transcript);
    if (max_retain <= 0) return result;
    PairCodeRoom own_room;
    PairCodeRoom& room = input.room != nullptr ? *input.room : own_room;
    const std::span<const PairCode> codes =
        count_pairs(input.markers, input.phenotype, *values, input.sigma, threads, set, room);
    const PairBounds bounds(statistic_error(*values, input.sigma));
    return BoundedSearch(input, rule, max_retain, threads, codes, bounds).search();
}

}  // namespace vort
