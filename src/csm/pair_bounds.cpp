#include "csm/pair_bounds.h"

#include <algorithm>
#include <cmath>

#include "csm/quick_pvalue.h"

namespace vort {

namespace {

constexpr double kUnit = 1.0 / (1 << kFractionBits);
constexpr double kTailSlack = 1e-5;

constexpr std::size_t kBinsOfFreedom = std::size_t{1} << (kStatisticBits - kBinBits);
constexpr double kBinWidth = kUnit * (1 << kBinBits);

// From the first edge above 0 on, the logarithm of a tail changes by less than this times the
// change of the statistic: it falls by density / tail, at most 3.7 for one degree of freedom.
constexpr double kSteepest = 8;

// The tail of the chi-square distribution, to twelve digits. With the tails of one and of two
// degrees of freedom known, two more degrees add a term (Abramowitz & Stegun 1964, 26.4.8):
//
//     Q(d + 2, s) = Q(d, s) + (s / 2)^(d / 2) exp(-s / 2) / Gamma(d / 2 + 1)
double tail(int freedom, double statistic) {
    constexpr double kTwoOverRootPi = 1.1283791670955126;
    const double half = statistic / 2;
    const bool odd = freedom % 2 != 0;
    const double root = std::sqrt(half);
    double term = std::exp(-half);
    double sum = odd ? std::erfc(root) : term;
    term *= odd ? kTwoOverRootPi * root : half;
    for (int d = odd ? 1 : 2; d < freedom; d += 2) {
        sum += term;
        term *= half / (d / 2.0 + 1);
    }
    return sum;
}

// The last steps of the program's tests.
double subtracted_twice(double tail) {
    return 1.0 - (1.0 - tail);
}

PvalueBounds from_tails(double low, double high) {
    return {subtracted_twice(low * (1 - kTailSlack)), subtracted_twice(high * (1 + kTailSlack))};
}

// Tails at the lower edges of the bins.
class BinEdges {
  public:
    BinEdges() : tail_((kMostFreedom + 1) * (kBinsOfFreedom + 1)) {
        constexpr double kNegligible = 1e-20;
        for (int d = 1; d <= kMostFreedom; ++d) {
            double value = 1;
            for (std::size_t b = 0; b <= kBinsOfFreedom && value > kNegligible; ++b) {
                value = tail(d, static_cast<double>(b) * kBinWidth);
                at(d, b) = value;
            }
        }
    }
    double operator()(int freedom, std::size_t bin) const {
        return tail_[freedom * (kBinsOfFreedom + 1) + bin];
    }

  private:
    double& at(int freedom, std::size_t bin) { return tail_[freedom * (kBinsOfFreedom + 1) + bin]; }

    std::vector<double> tail_;
};

const BinEdges& bin_edges() {
    static const BinEdges edges;
    return edges;
}

// The first of the codes first .. end - 1 for which the condition holds, or `end`; where it holds
// for one, it holds for all above.
template <typename Condition>
PairCode first_code(PairCode first, PairCode end, Condition holds) {
    while (first < end) {
        const PairCode middle = first + (end - first) / 2;
        if (holds(middle)) {
            end = middle;
        } else {
            first = middle + 1;
        }
    }
    return first;
}

}  // namespace

double statistic_error(const TwoValues& values, double sigma) {
    constexpr double kEightRoundings = 0x1p-50;
    const double cases = values.cases * std::fabs(values.case_value);
    const double controls = values.controls * std::fabs(values.control_value);
    const bool opposite = values.case_value > 0 && values.control_value < 0;
    const double V = opposite ? std::max(cases, controls) : cases + controls;
    const double largest = std::max(std::fabs(values.case_value), std::fabs(values.control_value));
    return kEightRoundings * (10 * V * V + 200 * V * largest) / sigma;
}

PvalueBounds PairBounds::of_code(PairCode code) const {
    const int freedom = freedom_of(code);
    if (freedom == 0) return {kUntestablePvalue, kUntestablePvalue};
    const double statistic = statistic_of(code) * kUnit;
    const double high = tail(freedom, std::max(0.0, statistic - error_));
    if (statistic_of(code) == kLargestStatistic) return from_tails(0, high);
    return from_tails(tail(freedom, statistic + kUnit + error_), high);
}

PvalueBounds PairBounds::of_bin(std::size_t bin) const {
    const int freedom = static_cast<int>(bin / kBinsOfFreedom);
    if (freedom == 0) return {kUntestablePvalue, kUntestablePvalue};
    const std::size_t b = bin % kBinsOfFreedom;
    const double shift = kSteepest * (error_ + kUnit);
    const double low = bin_edges()(freedom, b + 1) * (1 - shift);
    const double high = b == 0 ? 1 : bin_edges()(freedom, b) * (1 + shift);
    return from_tails(low, high);
}

// The bins leave the codes of one of them to try. Where a bin's lower bound is the first to reach
// the p-value, a code of that bin is the first whose lower bound does, or one further on, which is
// left out. Where a bin's upper bound is the first below it, codes of the bin before may be, too.
CodeLimits PairBounds::limits(double pvalue) const {
    const auto may_be_met = [pvalue](PvalueBounds p) { return p.low <= pvalue; };
    const auto is_below = [pvalue](PvalueBounds p) { return p.high < pvalue || p.high == 0; };
    CodeLimits limits{};
    limits.from[0] = kUntestablePvalue > pvalue ? 1 : 0;
    limits.to[0] = kUntestablePvalue >= pvalue ? 1 : 0;
    for (int d = 1; d <= kMostFreedom; ++d) {
        const auto first_bin = static_cast<PairCode>(d * kBinsOfFreedom);
        const auto end_bin = static_cast<PairCode>(first_bin + kBinsOfFreedom);
        const auto bin_where = [&](auto holds) {
            return first_code(first_bin, end_bin, [&](PairCode b) { return holds(of_bin(b)); });
        };
        const auto code_where = [&](PairCode bin, auto holds) {
            return first_code(bin << kBinBits, (bin + 1) << kBinBits,
                              [&](PairCode code) { return holds(of_code(code)); });
        };
        const PairCode met = bin_where(may_be_met);
        limits.from[d] = met == end_bin ? end_bin << kBinBits : code_where(met, may_be_met);
        const PairCode below = bin_where(is_below);
        limits.to[d] = below == first_bin ? first_bin << kBinBits : code_where(below - 1, is_below);
    }
    return limits;
}

}  // namespace vort
