// The step-up rules that decide how many marker sets are kept.
//
// The rules, one for single markers and one for pairs, are those of docs/method.md, section 4, with
// T sets of one size and p-values p(1) <= p(2) <= ... The factor H of pairs starts as 1 + 1/2 + ...
// + 1/T and loses 1/j at every step down.
//
// For pairs there is a second form, which knows the p-values only by bounds, in groups, and gives
// bounds of that j. It rests on two facts about a p-value t. At most j pairs are below t for sure:
// then p(j + 1) is not. At least j pairs are t or below for sure: then p(j) is. Groups in ascending
// order of their upper bounds therefore bound p(j) from above at the end of each group, and from
// there on backwards; groups in the order of their lower bounds bound it from below. Since H / j
// falls with j, a group that fails at its last place fails at all its places.
//
// Example: 3 pairs with p in (0.01, 0.011) and 5 with p in (0.0105, 0.012). p(3) <= 0.011, p(8) <=
// 0.012; 0.01 <= p(1), 0.0105 <= p(4).
//
// H as it is computed is the harmonic number but for the roundings of up to 2 T additions.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace vort {

struct StepUpRule {
    double cutoff;
    double alpha;
    std::int64_t tests;  // T
};

// Number of sets of `order` markers, smallest p-value first, that are kept. sorted[1 .. T] are
// elements of pvalue. Not a number as a p-value fails no comparison, and is kept.
int kept_by_step_up(int order, const StepUpRule& rule, std::span<const double> pvalue,
                    std::span<const int> sorted);

struct PvalueGroup {
    double low;
    double high;
    std::int64_t count;
};

struct KeptBounds {
    std::int64_t at_least;
    std::int64_t at_most;
};

// Places of the pairs in the order of their p-values, from bounds of those. All pairs of the groups
// come behind `before` pairs that are not in the groups; pairs that come behind all that matters
// may be left out.
class RankedGroups {
  public:
    RankedGroups(const std::vector<PvalueGroup>& groups, std::int64_t before);

    // Bounds of p(j), for places j that the groups have.
    double low(std::int64_t j) const;
    double high(std::int64_t j) const;

    // Bounds of the number of pairs kept. Places that are not in the groups are taken to fail.
    KeptBounds kept(const StepUpRule& rule) const;

  private:
    struct Step {
        double pvalue;
        std::int64_t last;  // place
    };
    static std::vector<Step> steps(std::vector<PvalueGroup> groups, double PvalueGroup::*bound,
                                   std::int64_t before);

    std::vector<Step> by_low_;
    std::vector<Step> by_high_;
};

// The rule for pairs at the places bounds.at_most down to bounds.at_least + 1, with the p-values
// themselves: sorted[0] is p(before + 1). bounds.at_least where it holds at none of them.
std::int64_t kept_by_pvalues(const StepUpRule& rule, std::span<const double> sorted,
                             std::int64_t before, const KeptBounds& bounds);

}  // namespace vort
