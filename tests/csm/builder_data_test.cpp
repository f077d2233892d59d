// Intake of a data set: the two halves, the phenotype, missing genotypes.
#include "csm/builder_data.h"

#include <gtest/gtest.h>

#include "csm/imputation.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

TEST(BuilderData, CasesAreSpreadOverBothHalves) {
    const struct {
        std::vector<short> phenotype;
        std::vector<int> order;
    } cases[] = {
        // Cases first: 4 1 2 | 3 0 5; then from the second place on against the second half.
        {{0, 1, 1, 0, 1, 0}, {4, 3, 0, 1, 2, 5}},
        {{0, 0, 0, 1}, {2, 1, 3, 0}},
        {{1, 0, 0, 0, 0}, {2, 1, 0, 3, 4}},
        {{1, 1, 1, 0, 0}, {0, 2, 3, 1, 4}},
        {{0, 0, 0}, {0, 1, 2}},
        {{1, 1, 1, 1, 1}, {0, 1, 2, 3, 4}},
        {{0, 1}, {0, 1}},
    };
    for (const auto& c : cases) {
        const int n = static_cast<int>(c.phenotype.size());
        const BuilderData data = builder_data(Genotypes(n, 0), c.phenotype);
        EXPECT_EQ(std::vector<int>(data.order().begin(), data.order().end()), c.order)
            << ::testing::PrintToString(c.phenotype);
        const int positive =
            static_cast<int>(std::count(c.phenotype.begin(), c.phenotype.end(), 1));
        EXPECT_EQ(data.cases(), positive);
        EXPECT_EQ(data.is_case_control(), positive > 0 && positive < n);
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(data.phenotype()[i], c.phenotype[c.order[i]] - double(positive) / n);
        }
    }
}

// Clusters stay those of the individuals, which stand at other places; their order stays, too.
TEST(BuilderData, ClustersFollowTheIndividuals) {
    const std::vector<short> phenotypes = {0, 1, 1, 0, 1, 0};
    const std::vector<int> labels = {5, 2, Clusters::kAlone, 2, 5, 2};
    const Clusters clusters(labels);
    const BuilderData data = builder_data(Genotypes(6, 0), phenotypes, 1, &clusters);
    const std::vector<int> order = {4, 3, 0, 1, 2, 5};
    ASSERT_EQ(std::vector<int>(data.order().begin(), data.order().end()), order);
    const std::span<const int> members = data.clusters().all_members();
    EXPECT_EQ(std::vector<int>(members.begin(), members.end()),
              (std::vector<int>{0, 2, 1, 3, 5, 4}));
}

TEST(BuilderData, PhenotypeIsCentred) {
    const BuilderData data = builder_data(Genotypes(4, 0), {-2, 4, 0, 6});
    EXPECT_EQ(data.mean(), 2);
    EXPECT_EQ(data.sigma(), 10);  // (16 + 4 + 4 + 16) / 4
    EXPECT_EQ(data.cases(), 2);
    EXPECT_TRUE(data.quantitative());
}

TEST(Imputation, AgreesWithDrawingAllMarkersInOrder) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const int n = 1 + static_cast<int>(seed * 7 % 90);
        const RandomStudy study(seed, {n, 12, seed % 3 * 0.3});
        const BuilderData data = builder_data(study.genotypes, study.phenotypes, 1 + seed % 3);
        Generator plain;
        plain.skip(seed);
        const Imputation imputation(data, plain);
        for (int j = 0; j < 12; ++j) {
            std::vector<signed char> filled = study.columns[j];
            const auto count = [&](int code) {
                return static_cast<int>(
                    std::count(study.columns[j].begin(), study.columns[j].end(), code));
            };
            const double of_0 = count(0) / double(n - count(-1));
            const double of_1 = count(1) / double(n - count(-1));
            for (signed char& code : filled) {
                if (code >= 0) continue;
                const double u = plain.next();
                code = u <= of_0 ? 0 : u <= of_0 + of_1 ? 1 : 2;
            }
            const std::vector<signed char> found = imputation.codes(j);
            for (int i = 0; i < n; ++i) {
                ASSERT_EQ(found[i], filled[data.order()[i]]) << "marker " << j << ", place " << i;
                ASSERT_EQ(data.planes().code(i, j), study.columns[j][data.order()[i]]);
            }
        }
    }
}

}  // namespace
}  // namespace vort::testing
