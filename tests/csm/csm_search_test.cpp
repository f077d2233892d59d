// Quick tests and the search: known values, and against the plain kernels to the bit.
#include "csm/plain_kernels.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmSearch = BuilderTest;

int sets_of(int m, int k) {
    return k == 1 ? m : m * (m - 1) / 2;
}

TEST_F(CsmSearch, SetNumbersAreLexicographic) {
    Study study({"0120120", "1201201", "2012012", "0000000"}, {0, 1, 1, 0});
    const auto csm = builder_with(study);
    for (const int k : {1, 2}) {
        for (int c = 1; c <= sets_of(7, k) + 1; ++c) {
            std::vector<int> expected = plain_set(c, 7, k);
            expected.insert(expected.begin(), -9);
            expected.resize(4, -9);  // nothing is written past the set
            std::vector<int> table(4, -9);
            std::vector<int> direct(4, -9);
            csm->sortchoose(c, 7, k, table.data());
            csm->sortchoose1(c, 7, k, direct.data());
            EXPECT_EQ(table, expected) << "set " << c << " of order " << k;
            EXPECT_EQ(direct, expected) << "set " << c << " of order " << k;
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
        double pvalue;
    } cases[] = {
        {"cells -1/2 and 1/2, S = 4", {"0", "0", "1", "1"}, {0, 0, 1, 1}, 0.0455002639},
        {"as many cases in each, S = 0", {"0", "0", "2", "2"}, {0, 1, 0, 1}, 1},
        // The individual left out still counts in ybar = 0.6 / 5. Cell means 0.4 and -0.1, so
        // S = 2 (0.28^2 + 0.22^2) / 0.24; divided by 4 individuals, p would be 0.3074.
        {"a missing genotype", {"0", "0", "1", "1", "-"}, {1, 1, 0, 1, 0}, 0.3039767},
        {"S = 6", {"00", "01", "10", "00", "01", "10"}, {1, 0, 0, 1, 0, 0}, 0.0497870684},
        {"all missing in one marker", {"0-", "1-", "0-"}, {1, 0, 1}, 0.5},
    };
    for (const auto& c : cases) {
        Study study(c.genotypes, c.phenotype);
        const auto csm = builder_with(study);
        const int k = study.markers();
        EXPECT_NEAR(csm->Test(k, 1), c.pvalue, 1e-6) << c.name;
        csm->data_ready = 0;
        EXPECT_NEAR(csm->test_quantitive(k, 1), c.pvalue, 1e-6) << c.name;
    }
}

TEST_F(CsmSearch, QuickTestAgreesWithThePlainFormToTheBit) {
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        auto [study, settings] = random_shape(seed);
        const auto csm = builder_with(study, settings);
        for (const int k : {1, 2}) {
            for (int c = 1; c <= sets_of(settings.markers, k); ++c) {
                ASSERT_EQ(bits(csm->Test(k, c)), bits(plain_quick_test(*csm, k, c)))
                    << "seed " << seed << ", set " << c << " of order " << k;
            }
        }
    }
}

TEST_F(CsmSearch, KeepsTheSetsOfThePlainSearchInTheirOrder) {
    int kept_in_all = 0;
    int longest = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        auto [study, settings] = random_shape(seed);
        const ConsoleCapture console;
        const auto csm = builder_with(study, settings);
        if (seed % 3 == 0) csm->Best_m = std::min(2, csm->marker_num);
        const auto expected = plain_search(*csm);
        // Without a variance no p-value is a number and all sets are kept; one that cannot be
        // clustered would end the program.
        const auto unclusterable = [&csm = *csm](const auto& set) {
            return csm.sigma == 0 && plain_score(csm, set.first, set.second).record == nullptr;
        };
        if (std::any_of(expected.begin(), expected.end(), unclusterable)) continue;
        BestClusterInformationArray array(100);
        ASSERT_EQ(csm->bestsetper1(&array), 0);
        std::vector<std::pair<int, int>> kept;
        for (const auto& record : array.items) {
            kept.emplace_back(record->marker_count, record->combination_index);
        }
        EXPECT_EQ(kept, expected);
        EXPECT_EQ(expected.empty(), console.text().ends_with("CSM get len=0\n"));
        kept_in_all += array.count();
        longest = std::max(longest, array.count());
    }
    EXPECT_GT(kept_in_all, 50);
    EXPECT_GT(longest, 4);
}

TEST_F(CsmSearch, PvalueOfExactlyAlphaPassesForMarkersOnly) {
    Study study({"00", "00", "01", "11", "11", "10"}, {0, 0, 0, 1, 1, 1});
    const auto csm = builder_with(study);
    for (const int k : {1, 2}) {
        const double pvalue = csm->Test(k, 1);
        for (const int step : {-1, 0, 1}) {
            csm->alpha = step == 0 ? pvalue : std::nextafter(pvalue, step);
            BestClusterInformationArray array(10);
            csm->bestsetper1(&array);
            const bool kept = std::any_of(array.items.begin(), array.items.end(), [&](auto& r) {
                return static_cast<int>(r->marker_count) == k;
            });
            EXPECT_EQ(kept, step + (k == 1) > 0) << "order " << k << ", step " << step;
        }
    }
}

TEST_F(CsmSearch, FewMarkersOrNoneWanted) {
    const Settings cases[] = {{4, 0}, {4, -3}, {4, 1, 0}, {4, 2, -1}, {4, 2, 10, 0, "0.000001"}};
    for (const Settings& settings : cases) {
        Study study({"02", "02", "20", "20"}, {0, 0, 1, 1});
        const auto csm = builder_with(study, settings);
        const ConsoleCapture console;
        BestClusterInformationArray array(10);
        csm->bestsetper1(&array);
        EXPECT_EQ(array.count(), 0);
        EXPECT_EQ(console.text(), "CSM get len=0\n");
    }
}

}  // namespace
}  // namespace vort::testing
