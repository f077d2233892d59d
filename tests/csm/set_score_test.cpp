// The score of a marker set: the fast statistics against the plain ones to the bit, and the
// clustering that is kept against the rule as it is defined.
#include "csm/set_score.h"

#include <gtest/gtest.h>

#include "csm/permuted_statistics.h"
#include "numeric/index_sort.h"
#include "support/builder_study.h"
#include "support/random_clusters.h"
#include "support/told.h"

namespace vort::testing {
namespace {

constexpr int kMostGroups = 10;

void expect_plain_statistics(const BuilderData& data, const MarkerSet& set, const Generator& start,
                             int step) {
    SCOPED_TRACE("set " + std::to_string(set.number) + " of order " + std::to_string(set.size));
    const SetCells cells = form_cells(data.planes(), data.individuals(), set);
    const GroupingRules rules(data, builder_settings(data.individuals(), data.markers()), set.size);
    const auto fast = permuted_statistics(data, cells, rules, start);
    const auto plain = plain_statistics(data, cells, rules, start);
    for (int g = 2; g <= std::min(cells.ncell, kMostGroups); ++g) {
        for (int first = 0; first < kOrders; first += step * kLanes) {
            double found[kLanes], expected[kLanes];
            fast->compute(g, first, found);
            plain->compute(g, first, expected);
            for (int l = 0; l < kLanes && first + l < kOrders; ++l) {
                ASSERT_EQ(bits(found[l]), bits(expected[l]))
                    << "order " << first + l << ", " << g << " groups";
            }
        }
    }
}

// Sizes stand around the widths of words and counters; case and control numbers that divide evenly
// make distances that tie.
TEST(PermutedStatistics, AgreeWithThePlainFormToTheBit) {
    const int sizes[] = {5, 6, 12, 20, 40, 63, 64, 65, 127, 128, 129, 200, 255, 256, 257, 300};
    for (unsigned seed = 1; seed <= 48 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const int n = sizes[seed % std::size(sizes)];
        const double missing[] = {0, 0.02, 0.3};
        const RandomStudy study(seed, {n, 11, missing[seed % 3], seed % 4 == 0 ? 0.2 : 0.5});
        std::mt19937 random(seed);
        const Clusters clusters(random_cluster_labels(random, n));
        const BuilderData data =
            builder_data(study.genotypes, study.phenotypes, 1, seed % 2 == 0 ? &clusters : nullptr);
        Generator start;
        start.skip(seed * 1000);
        for (const int number : {1, 3, 8, 10}) {
            expect_plain_statistics(data, marker_set(1, number, 11), start, 3);
        }
        for (const int number : {1, 2, 9, static_cast<int>(seed) % 55 + 1}) {
            expect_plain_statistics(data, marker_set(2, number, 11), start, 3);
        }
    }
}

TEST(PermutedStatistics, ManyIndividuals) {
    for (const int n : {33000, 50000}) {
        SCOPED_TRACE(n);
        const RandomStudy study(static_cast<unsigned>(n), {n, 3, 0.01});
        const BuilderData data = builder_data(study.genotypes, study.phenotypes);
        expect_plain_statistics(data, marker_set(1, 1, 3), Generator(), 62);
        expect_plain_statistics(data, marker_set(2, 3, 3), Generator(), 62);
    }
}

// All 501 statistics of every g are ranked; the g that gives the observed one its smallest p-value
// is kept, the largest of equals.
struct PlainScore {
    PlainScore(const BuilderData& data, const SetCells& cells, const GroupingRules& rules,
               const Generator& start) {
        const auto permuted = plain_statistics(data, cells, rules, start);
        double smallest = 2;
        for (int g = std::min(cells.ncell, kMostGroups); g >= 2; --g) {
            const Grouping observed = group_cells(tally_cells(cells, data.phenotype()), rules, g);
            std::vector<double> statistic{0, observed.statistic};
            for (int first = 0; first < kOrders; first += kLanes) {
                double found[kLanes];
                permuted->compute(g, first, found);
                statistic.insert(statistic.end(), found, found + std::min(kLanes, kOrders - first));
            }
            std::vector<int> order(statistic.size());
            Quickindex(statistic.data(), order.data(), kOrders + 1);
            const auto rank = std::find(order.begin() + 1, order.end(), 1) - order.begin();
            const double pvalue = double(kOrders - rank + 1) / kOrders;
            if (pvalue < smallest) {
                smallest = pvalue;
                groups = g;
                kept = observed;
            }
        }
    }

    int groups = 0;
    Grouping kept;
};

void expect_plain_score(const BuilderData& data, const BuilderSettings& settings,
                        const MarkerSet& set, const Generator& start) {
    SCOPED_TRACE("set " + std::to_string(set.number) + " of order " + std::to_string(set.size));
    const SetCells cells = form_cells(data.planes(), data.individuals(), set);
    Transcript text(true);
    const auto score = [&] { return best_clustering(data, settings, set, start, true, text); };
    if (cells.ncell < 2) {
        EXPECT_EQ(stop_of([&] { score(); }).substr(0, 28),
                  "0 find error BestClusterNum" + std::string(cells.ncell ? " " : "<"));
        return;
    }
    const ClusterRecord record = score();
    const PlainScore plain(data, cells, GroupingRules(data, settings, set.size), start);
    ASSERT_EQ(record.groups(), plain.groups);
    ASSERT_EQ(record.combination_index, set.number);
    int seen = 0;
    for (int q = 1; q <= plain.groups; ++q) {
        const int size = plain.kept.cases[q] + plain.kept.controls[q];
        ASSERT_EQ(record.group_frequency[q - 1], double(size) / data.individuals());
        ASSERT_EQ(record.group_average[q - 1], size ? double(plain.kept.cases[q]) / size : 0);
        if (size > 0) ++seen;
        for (int c = 1; c <= cells.ncell; ++c) {
            ASSERT_EQ(record.members[q - 1][c], plain.kept.group_of_cell[c] == q);
            ASSERT_EQ(static_cast<int>(record.genotype_code[c]), cells.code[c]);
        }
    }
    ASSERT_EQ(record.nonempty_groups, seen);
    const std::string line =
        "nchoose=" + std::to_string(set.size) + "index=" + std::to_string(set.number) + " ii=1\n";
    ASSERT_TRUE(text.text().starts_with("clustermethod=" + std::to_string(settings.clustering) +
                                        '\n' + line));
}

TEST(BestClustering, AgreesWithTheRuleAsItIsDefined) {
    for (unsigned seed = 1; seed <= 60 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const int n = 5 + static_cast<int>(seed * 37 % 150);
        const double missing[] = {0, 0.02, 0.5};
        // Some quantitative, some of cases only, whose statistics are not numbers.
        const RandomStudy study(
            seed, {n, 11, missing[seed % 3], seed % 15 == 7 ? 1.0 : 0.4, seed % 6 == 1 ? 4 : 2});
        const BuilderData data = builder_data(study.genotypes, study.phenotypes);
        const int clustering = seed % 5 == 0 ? static_cast<int>(1 + seed / 5 % 4) : 0;
        const BuilderSettings settings = builder_settings(n, 11, clustering);
        Generator start;
        start.skip(seed * 77);
        for (const int number : {1, 3, 4, 6, 10}) {
            expect_plain_score(data, settings, marker_set(1, number, 11), start);
        }
        for (const int number : {1, 2, static_cast<int>(seed) % 55 + 1}) {
            expect_plain_score(data, settings, marker_set(2, number, 11), start);
        }
    }
}

}  // namespace
}  // namespace vort::testing
