// Quick tests and the search: known values, and against the plain kernels to the bit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "csm/plain_kernels.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmSearch = BuilderTest;

TEST_F(CsmSearch, SetNumbersAreLexicographic) {
    write_settings({4, 7});
    Study study({"0120120", "1201201", "2012012", "0000000"}, {0, 1, 1, 0});
    CSM csm(prefix_);
    take_in(csm, study);
    for (const int k : {1, 2}) {
        const int sets = k == 1 ? 7 : 21;
        for (int c = 1; c <= sets + 1; ++c) {
            SCOPED_TRACE("set " + std::to_string(c) + " of order " + std::to_string(k));
            std::array<int, 4> table{-9, -9, -9, -9};
            std::array<int, 4> direct = table;
            csm.sortchoose(c, 7, k, table.data());
            csm.sortchoose1(c, 7, k, direct.data());
            EXPECT_EQ(table, direct);
            const std::vector<int> expected = plain_set(c, 7, k);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), table.begin() + 1));
            EXPECT_EQ(table[0], -9);
            EXPECT_EQ(table[k + 1], -9) << "written past the set";
        }
    }
}

// Upper tails of the chi-square distribution: 2 Q(sqrt x) for one degree of freedom, exp(-x / 2)
// for two.
TEST_F(CsmSearch, QuickTestByHand) {
    const struct {
        const char* name;
        std::vector<std::string> genotypes;
        std::vector<short> phenotype;
        int k;
        double pvalue;
    } cases[] = {
        {"cells -1/2 and 1/2, S = 4", {"0", "0", "1", "1"}, {0, 0, 1, 1}, 1, 0.0455002639},
        {"as many cases in each, S = 0", {"0", "0", "2", "2"}, {0, 1, 0, 1}, 1, 1},
        {"one cell", {"1", "1", "1", "1"}, {0, 0, 1, 1}, 1, 0.5},
        // The individual left out still counts in ybar = 0.6 / 5. Cell means 0.4 and -0.1, so
        // S = 2 (0.28^2 + 0.22^2) / 0.24; divided by 4 individuals, p would be 0.3074.
        {"a missing genotype", {"0", "0", "1", "1", "-"}, {1, 1, 0, 1, 0}, 1, 0.3039767},
        {"three cells, S = 6",
         {"00", "01", "10", "00", "01", "10"},
         {1, 0, 0, 1, 0, 0},
         2,
         0.0497870684},
        {"all missing in one marker", {"0-", "1-", "0-"}, {1, 0, 1}, 2, 0.5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const int m = static_cast<int>(c.genotypes[0].size());
        write_settings({static_cast<int>(c.genotypes.size()), m});
        Study study(c.genotypes, c.phenotype);
        CSM csm(prefix_);
        take_in(csm, study);
        EXPECT_NEAR(csm.Test(c.k, 1), c.pvalue, 1e-6);
        csm.data_ready = 0;
        EXPECT_EQ(csm.Test(c.k, 1), csm.test_quantitive(c.k, 1));
    }
}

TEST_F(CsmSearch, QuickTestAgreesWithThePlainFormToTheBit) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Shape shape(seed);
        Study study(shape.genotypes, shape.phenotype);
        CSM csm(prefix_);
        take_in(csm, study);
        for (const int k : {1, 2}) {
            const int sets = k == 1 ? shape.m : shape.m * (shape.m - 1) / 2;
            for (int c = 1; c <= sets; ++c) {
                ASSERT_EQ(bits(csm.Test(k, c)), bits(plain_quick_test(csm, k, c)))
                    << "set " << c << " of order " << k;
            }
        }
    }
}

TEST_F(CsmSearch, KeepsTheSetsOfThePlainSearchInTheirOrder) {
    int kept_in_all = 0;
    int longest = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Shape shape(seed);
        Study study(shape.genotypes, shape.phenotype);
        const ConsoleCapture console;
        CSM csm(prefix_);
        take_in(csm, study);
        if (seed % 3 == 0) csm.Best_m = std::min(2, csm.marker_num);
        const auto expected = plain_search(csm);
        // Without a variance no p-value is a number and all sets are kept; one that cannot be
        // clustered would end the program.
        const auto unclusterable = [&](const auto& set) {
            return csm.sigma == 0 && plain_score(csm, set.first, set.second).record == nullptr;
        };
        if (std::any_of(expected.begin(), expected.end(), unclusterable)) continue;
        BestClusterInformationArray array(100);
        ASSERT_EQ(csm.bestsetper1(&array), 0);
        ASSERT_EQ(array.count(), static_cast<int>(expected.size()));
        for (int e = 0; e < array.count(); ++e) {
            const BestClusterInformation& record = *array.items[e];
            ASSERT_EQ(static_cast<int>(record.marker_count), expected[e].first);
            ASSERT_EQ(record.combination_index, expected[e].second);
        }
        EXPECT_EQ(expected.empty(), console.text().ends_with("CSM get len=0\n"));
        kept_in_all += array.count();
        longest = std::max(longest, array.count());
    }
    EXPECT_GT(kept_in_all, 50);
    EXPECT_GT(longest, 4);
}

TEST_F(CsmSearch, PvalueOfExactlyAlphaPassesForMarkersOnly) {
    write_settings({6, 2});
    Study study({"00", "00", "01", "11", "11", "10"}, {0, 0, 0, 1, 1, 1});
    CSM csm(prefix_);
    take_in(csm, study);
    for (const int k : {1, 2}) {
        csm.alpha = csm.Test(k, 1);
        BestClusterInformationArray array(10);
        csm.bestsetper1(&array);
        const bool kept = std::any_of(array.items.begin(), array.items.end(), [&](auto& record) {
            return static_cast<int>(record->marker_count) == k;
        });
        EXPECT_EQ(kept, k == 1);
        csm.alpha = std::nextafter(csm.alpha, k == 1 ? 0 : 1);
        BestClusterInformationArray moved(10);
        csm.bestsetper1(&moved);
        EXPECT_EQ(moved.count() > array.count(), k == 2);
        EXPECT_EQ(moved.count() < array.count(), k == 1);
    }
}

TEST_F(CsmSearch, FewMarkersOrNoneWanted) {
    const Settings cases[] = {{4, 0}, {4, -3}, {4, 1, 0}, {4, 2, -1}, {4, 2, 10, 0, "0.000001"}};
    for (const Settings& settings : cases) {
        SCOPED_TRACE(settings.markers);
        write_settings(settings);
        Study study({"02", "02", "20", "20"}, {0, 0, 1, 1});
        const ConsoleCapture console;
        CSM csm(prefix_);
        take_in(csm, study);
        BestClusterInformationArray array(10);
        csm.bestsetper1(&array);
        EXPECT_EQ(array.count(), 0);
        EXPECT_EQ(console.text(), "test_method=newCSM\nCSM get len=0\n");
        test_method_print = 1;
    }
}

TEST_F(CsmSearch, AnnouncesEveryHundredthMarkerAndThousandthPair) {
    const int m = 100;
    std::mt19937_64 random(5);
    const std::vector<short> phenotype = {0, 1, 0, 1, 0, 1, 0, 1};
    write_settings({8, m, 0});
    Study study(random_genotypes(random, 8, m, 0, phenotype), phenotype);
    CSM csm(prefix_);
    take_in(csm, study);
    const ConsoleCapture console;
    BestClusterInformationArray array(10);
    csm.bestsetper1(&array);
    EXPECT_EQ(console.text(), "j=100\nj=1000\nj=2000\nj=3000\nj=4000\nCSM get len=0\n");
}

}  // namespace
}  // namespace vort::testing
