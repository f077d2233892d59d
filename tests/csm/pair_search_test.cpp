// The search of all pairs against the search as it is defined, to the last pair.
#include "csm/pair_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>

#include "csm/exact_pairs.h"
#include "csm/pair_bounds.h"
#include "csm/pair_numbers.h"
#include "csm/random_pair_study.h"
#include "csm/step_up.h"

namespace vort::testing {
namespace {

using Shape = RandomPairStudy::Shape;
using Phenotype = RandomPairStudy::Phenotype;
using StepUp = PairSearchStatistics::StepUp;
using Order = PairSearchStatistics::Order;

constexpr Instructions kSets[] = {Instructions::kPortable, Instructions::kWide,
                                  Instructions::kWidest};

// A study with its p-values in the plain order, and how its searches were decided.
class SolvedStudy {
  public:
    SolvedStudy(std::uint32_t seed, const Shape& shape)
        : study(seed, shape), pvalue_(study.pvalues(text_)), order_(sorted_plainly(pvalue_)) {}

    int pairs() const { return static_cast<int>(pvalue_.size()) - 1; }
    double p(int j) const { return pvalue_[order_[j]]; }

    // The cut-off at which the j-th smallest p-value just fails.
    double cutoff_at(int j) const {
        double H = 0;
        for (int t = 1; t <= pairs(); ++t) H += 1.0 / t;
        for (int t = pairs(); t > j; --t) H -= 1.0 / t;
        return p(j) / j * H * pairs();
    }

    PairSearchStatistics check(double cutoff, double alpha, int max_retain, int threads,
                               Instructions set) const {
        Transcript text(true);
        const PairSearchResult found =
            search_pairs(study.input(), cutoff, alpha, max_retain, threads, text, set);
        const int passed = pairs() > 0 ? plainly_passed(cutoff, alpha, pvalue_, order_) : 0;
        const int kept = std::max(0, std::min(max_retain, passed));
        EXPECT_EQ(found.kept, std::vector<int>(order_.begin() + 1, order_.begin() + 1 + kept))
            << "cut-off " << cutoff << " alpha " << alpha << " at most " << max_retain
            << " threads " << threads << " instructions " << static_cast<int>(set);
        EXPECT_EQ(text.text(), text_.text());
        return found.statistics;
    }

    RandomPairStudy study;

  private:
    Transcript text_{true};
    std::vector<double> pvalue_;
    std::vector<int> order_;
};

Shape random_shape(RandomPairStudy& random, int most_individuals, int most_markers) {
    const auto one_in = [&](int k) { return random.below(k) == 0; };
    Shape shape{.n = 5 + random.below(most_individuals - 4), .m = random.below(most_markers + 1)};
    if (one_in(2)) shape.missing = 0.2 * random.uniform();
    if (one_in(2)) shape.duplicated = 0.5 * random.uniform();
    if (one_in(3)) shape.monomorphic = 0.4 * random.uniform();
    if (one_in(2)) shape.effect = one_in(2) ? random.uniform() : 0.2 * random.uniform();
    if (one_in(3)) shape.case_share = 0.02 + 0.6 * random.uniform();
    if (one_in(15)) shape.phenotype = Phenotype::kQuantitative;
    if (one_in(15)) shape.phenotype = Phenotype::kAllCases;
    shape.spread = one_in(2);
    return shape;
}

TEST(PairSearch, RandomStudiesAsDefined) {
    constexpr int kMaxRetain[] = {0, 1, 3, 10, 1000000, -5};
    constexpr double kCutoffs[] = {0.01, 0.1, 0.75, 1, 5, std::numeric_limits<double>::quiet_NaN()};
    constexpr double kAlphas[] = {0.05, 0.05, 0.5, 2};
    std::map<StepUp, int> step_ups;
    std::map<Order, int> orders;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomPairStudy random(seed, {.n = 5, .m = 0});
        const SolvedStudy solved(
            seed, random_shape(random, seed % 30 == 0 ? 3000 : 300, seed % 30 == 0 ? 80 : 40));
        for (const Instructions set : kSets) {
            if (set > best_instructions()) continue;
            double cutoff = kCutoffs[random.below(6)];
            double alpha = kAlphas[random.below(4)];
            if (solved.pairs() > 0 && random.below(3) == 0) {
                const int j = 1 + random.below(std::min(solved.pairs(), 20));
                cutoff = solved.cutoff_at(j) * (random.below(2) == 0 ? 1 : 1 - 1e-3);
                if (random.below(4) == 0) alpha = solved.p(j);
            }
            const auto statistics =
                solved.check(cutoff, alpha, kMaxRetain[random.below(6)], 1 + random.below(3), set);
            ++step_ups[statistics.step_up];
            ++orders[statistics.order];
        }
    }
    for (const StepUp served :
         {StepUp::kNotAsked, StepUp::kBins, StepUp::kBounds, StepUp::kPvalues}) {
        EXPECT_GT(step_ups[served], 5) << static_cast<int>(served);
    }
    for (const Order served : {Order::kEmpty, Order::kDistinct, Order::kTies, Order::kPlain}) {
        EXPECT_GT(orders[served], 5) << static_cast<int>(served);
    }
}

TEST(PairSearch, LargerStudiesAsDefined) {
    const struct {
        const char* name;
        Shape shape;
    } cases[] = {
        {"many pairs, repeated markers", {.n = 120, .m = 300, .duplicated = 0.5, .effect = 0.3}},
        {"many pairs, strong effects", {.n = 150, .m = 300, .missing = 0.1, .effect = 0.9}},
        {"40,000 individuals", {.n = 40000, .m = 9, .missing = 0.05, .duplicated = 0.3}},
        {"46,400 individuals", {.n = 46400, .m = 9, .effect = 0.02, .case_share = 0.3}},
        {"one case in a thousand", {.n = 20000, .m = 10, .case_share = 0.001}},
    };
    for (const auto& [name, shape] : cases) {
        SCOPED_TRACE(name);
        const SolvedStudy solved(2, shape);
        for (const Instructions set : kSets) {
            if (set > best_instructions()) continue;
            for (const int max_retain : {1, 20, 500, 1000000}) {
                solved.check(0.75, 0.05, max_retain, 2, set);
                solved.check(solved.cutoff_at(30), 2, max_retain, 1, set);
            }
        }
    }
}

// A test without a variance warns in its turn among the announcements.
TEST(PairSearch, PhenotypeWithoutVariance) {
    const SolvedStudy solved(3, {.n = 20, .m = 50, .phenotype = Phenotype::kAllCases});
    for (const int threads : {1, 3}) {
        const auto statistics = solved.check(0.75, 0.05, 4, threads, Instructions::kPortable);
        EXPECT_EQ(statistics.order, Order::kPlain);
    }
    Transcript text(true);
    search_pairs(solved.study.input(), 0.75, 0.05, 0, 1, text);
    EXPECT_NE(text.text().find("gcf\nj=1000\na too"), std::string_view::npos);
}

// The p-values are those of single pairs, and within the bounds of their codes and bins.
TEST(PairSearch, BoundsHold) {
    std::int64_t known = 0;
    PairCodeRoom room;
    std::ranges::fill(room.take(100000), ~PairCode{0});
    for (const int n : {40, 1000, 50000}) {
        const RandomPairStudy study(4, {.n = n, .m = 2400 / n + 8, .missing = 0.05, .effect = 0.3});
        Transcript nobody(false);
        const std::vector<double> pvalue = study.pvalues(nobody);
        const TwoValues values = two_values(study.y).value();
        const auto codes =
            count_pairs(study.markers, study.y, values, study.sigma, 1, best_instructions(), room);
        const PairBounds bounds(statistic_error(values, study.sigma));
        const std::size_t N = pvalue.size() - 1;
        const ExactPairs exact(study.input(), {codes.data(), N}, bounds);
        for (std::size_t c = 1; c <= N; ++c) {
            const PairCode code = codes.data()[c - 1];
            EXPECT_EQ(exact.pvalue(static_cast<int>(c)), pvalue[c]);
            for (const PvalueBounds& p : {bounds.of_code(code), bounds.of_bin(bin_of(code))}) {
                EXPECT_LE(p.low, pvalue[c]);
                EXPECT_GE(p.high, pvalue[c]);
                EXPECT_LE(p.high, p.low * 1.04 + 1e-15);
                known += p.known() ? 1 : 0;
            }
            const CodeLimits limits = bounds.limits(pvalue[c]);
            EXPECT_LE(limits.from[freedom_of(code)], code);
            if (pvalue[c] > 0) {
                EXPECT_GT(limits.to[freedom_of(code)], code);
            }
        }
    }
    EXPECT_GT(known, 0);
}

TEST(PairSearch, NumbersOfPairs) {
    for (const int m : {2, 3, 4, 100, 65536}) {
        const PairNumbers numbers(m);
        EXPECT_EQ(numbers.count(), std::int64_t{m} * (m - 1) / 2);
        for (int a = 0; a < m - 1; a += std::max(1, m / 97)) {
            for (const int b : {a + 1, (a + m) / 2, m - 1}) {
                if (b <= a) continue;
                const MarkerPair pair = numbers.markers_of(numbers.before_row(a) + b - a);
                EXPECT_EQ(pair.first, a);
                EXPECT_EQ(pair.second, b);
            }
        }
    }
}

// p(j) / j against cutoff / T by hand: T = 4.
TEST(StepUp, RulesByHand) {
    const std::vector<double> pvalue{-1, 0.04, 0.2, 0.01, 0.04};
    const std::vector<int> order{0, 3, 1, 4, 2};
    const struct {
        int set_size;
        double cutoff;
        double alpha;
        int kept;
    } cases[] = {
        {1, 0.06, 0.05, 3},  {1, 0.05, 0.05, 1}, {1, 0.03, 0.05, 0}, {1, 1, 0.04, 3},
        {1, 1, 0.039, 1},    {1, 1, 1, 4},       {2, 0.1, 0.05, 3},  {2, 0.09, 0.05, 1},
        {2, 0.041, 0.05, 1}, {2, 1, 0.04, 1},    {2, 0.42, 1, 4},    {2, 0.41, 1, 3},
    };
    for (const auto& [set_size, cutoff, alpha, kept] : cases) {
        EXPECT_EQ(kept_by_step_up(set_size, {cutoff, alpha, 4}, pvalue, order), kept)
            << set_size << ' ' << cutoff << ' ' << alpha;
    }
}

}  // namespace
}  // namespace vort::testing
