#include "csm/step_up.h"

#include <algorithm>
#include <cmath>

namespace vort {

namespace {

// Of comparisons that are made in real numbers, for those that the program makes in doubles.
constexpr double kRounding = 1e-12;

bool passes_for_markers(const StepUpRule& rule, double p, double j) {
    return !(rule.cutoff / static_cast<double>(rule.tests) <= p / j || p > rule.alpha);
}

bool passes_for_pairs(const StepUpRule& rule, double p, double j, double H) {
    return !(rule.cutoff / static_cast<double>(rule.tests) <= p / j * H || p >= rule.alpha);
}

// H at the place j, coming down from T. As many additions and subtractions as the rule makes.
class HarmonicSum {
  public:
    explicit HarmonicSum(std::int64_t T) : at_(T) {
        for (std::int64_t t = 1; t <= T; ++t) value_ += 1.0 / static_cast<double>(t);
    }
    double down_to(std::int64_t j) {
        for (; at_ > j; --at_) value_ -= 1.0 / static_cast<double>(at_);
        return value_;
    }

  private:
    double value_ = 0;
    std::int64_t at_;
};

// 1 + 1/2 + ... + 1/j to twelve digits.
double harmonic_number(std::int64_t j) {
    constexpr double kEuler = 0.57721566490153286;
    if (j < 100) {
        double sum = 0;
        for (std::int64_t t = j; t >= 1; --t) sum += 1.0 / static_cast<double>(t);
        return sum;
    }
    const double x = static_cast<double>(j);
    return std::log(x) + kEuler + (0.5 - (1 / 12.0 - 1 / (120.0 * x * x)) / x) / x;
}

// How far the computed H may be from it, in both directions, as a share of the least H there is.
double harmonic_slack(std::int64_t T) {
    const double x = static_cast<double>(T);
    return 4 * x * 0x1p-53 * (std::log(x + 1) + 2) + kRounding;
}

}  // namespace

int kept_by_step_up(int order, const StepUpRule& rule, std::span<const double> pvalue,
                    std::span<const int> sorted) {
    const auto p = [&](std::int64_t j) { return pvalue[sorted[j]]; };
    std::int64_t j = rule.tests;
    if (order == 1) {
        while (j > 0 && !passes_for_markers(rule, p(j), static_cast<double>(j))) --j;
        return static_cast<int>(j);
    }
    HarmonicSum H(rule.tests);
    while (j > 0 && !passes_for_pairs(rule, p(j), static_cast<double>(j), H.down_to(j))) --j;
    return static_cast<int>(j);
}

std::vector<RankedGroups::Step> RankedGroups::steps(std::vector<PvalueGroup> groups,
                                                    double PvalueGroup::*bound,
                                                    std::int64_t before) {
    std::sort(groups.begin(), groups.end(),
              [bound](const PvalueGroup& a, const PvalueGroup& b) { return a.*bound < b.*bound; });
    std::vector<Step> steps;
    steps.reserve(groups.size());
    for (const PvalueGroup& group : groups) {
        before += group.count;
        steps.push_back({group.*bound, before});
    }
    return steps;
}

RankedGroups::RankedGroups(const std::vector<PvalueGroup>& groups, std::int64_t before)
    : by_low_(steps(groups, &PvalueGroup::low, before)),
      by_high_(steps(groups, &PvalueGroup::high, before)) {}

double RankedGroups::low(std::int64_t j) const {
    return std::partition_point(by_low_.begin(), by_low_.end(),
                                [j](const Step& step) { return step.last < j; })
        ->pvalue;
}

double RankedGroups::high(std::int64_t j) const {
    return std::partition_point(by_high_.begin(), by_high_.end(),
                                [j](const Step& step) { return step.last < j; })
        ->pvalue;
}

KeptBounds RankedGroups::kept(const StepUpRule& rule) const {
    const double slack = harmonic_slack(rule.tests);
    const auto passes = [&](const Step& step, double factor) {
        const double H = harmonic_number(step.last) * factor;
        return passes_for_pairs(rule, step.pvalue, static_cast<double>(step.last), H);
    };
    KeptBounds bounds{0, 0};
    for (const Step& step : by_high_) {
        if (passes(step, 1 + slack)) bounds.at_least = std::max(bounds.at_least, step.last);
    }
    for (const Step& step : by_low_) {
        if (passes(step, 1 - slack)) bounds.at_most = std::max(bounds.at_most, step.last);
    }
    return bounds;
}

std::int64_t kept_by_pvalues(const StepUpRule& rule, std::span<const double> sorted,
                             std::int64_t before, const KeptBounds& bounds) {
    HarmonicSum H(rule.tests);
    for (std::int64_t j = bounds.at_most; j > bounds.at_least; --j) {
        const double p = sorted[static_cast<std::size_t>(j - before - 1)];
        if (passes_for_pairs(rule, p, static_cast<double>(j), H.down_to(j))) return j;
    }
    return bounds.at_least;
}

}  // namespace vort
