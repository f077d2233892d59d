// The ensemble stage on small studies, and its first data set on the golden ones.
#include "ensemble/ensemble_stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "screening/screening.h"
#include "support/golden_study.h"
#include "support/random_study.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// A study and its data sets, all markers ranked in the order of the columns.
struct SmallStudy {
    SmallStudy(const Columns& columns, const std::vector<short>& observed)
        : genotypes(packed(static_cast<int>(observed.size()), columns)), phenotypes(observed) {
        settings.builder.individuals = static_cast<int>(observed.size());
        settings.builder.markers = static_cast<int>(columns.size());
        settings.builder.fdr_cutoff = 1;
        add_ranking();
    }

    void add(const std::vector<short>& permuted) {
        phenotypes.add(permuted);
        ++settings.builder.permutations;
        add_ranking();
    }
    void add_ranking() {
        auto& ranking = best.emplace_back();
        for (int j = 0; j < genotypes.markers(); ++j) ranking.push_back(j);
    }

    Result run() {
        console.clear();
        modelled.clear();
        EnsembleOptions options;
        options.progress = [this](int d, double, int) { modelled.push_back(d); };
        options.console = [this](std::string_view text) { console += text; };
        EnsembleStage stage({genotypes, phenotypes, best}, settings, options);
        try {
            return stage.run();
        } catch (const Stop&) {
            left = stage.intermediate_texts();
            throw;
        }
    }

    Genotypes genotypes;
    PhenotypeRows phenotypes;
    std::vector<std::vector<int>> best;
    Settings settings;
    std::string console;
    std::vector<int> modelled;  // data sets that were told to have their model
    IntermediateTexts left;
};

// Of 40 individuals the last 20 have genotype 2; the phenotype is as the genotype in all, or in all
// but four of each half.
const std::vector<signed char> kHalf = [] {
    std::vector<signed char> codes(40);
    std::fill(codes.begin() + 20, codes.end(), static_cast<signed char>(2));
    return codes;
}();
std::vector<short> phenotype_of_half(int others) {
    std::vector<short> phenotype(40);
    for (int i = 0; i < 40; ++i) phenotype[i] = (i >= 20) != (i % 20 < others) ? 1 : 0;
    return phenotype;
}

// A permuted data set as good as the observed one does not count as stronger; a better one does.
TEST(EnsembleStage, PvalueIsTheShareOfStrongerPermutations) {
    const std::vector<short> observed = phenotype_of_half(4);
    SmallStudy study({kHalf}, observed);
    study.add(observed);
    study.add(phenotype_of_half(0));
    const Result result = study.run();
    EXPECT_EQ(result.pvalue, 0.5);
    EXPECT_EQ(result.permuted.front(), result.observed);
    EXPECT_EQ(result.markers, std::vector{1});
    EXPECT_THAT(pvalue_text(result), HasSubstr("Overall P-value=0.5\n"));
}

// The means of the two genotypes differ, the shares above the mean do not: the marker is kept, but
// both cells end in one group, and no column is left.
TEST(EnsembleStage, BaseLearnersWithoutAColumn) {
    Columns columns(1);
    std::vector<short> phenotype;
    for (int i = 0; i < 40; ++i) {
        columns[0].push_back(i < 20 ? 0 : 1);
        phenotype.push_back(i < 20 ? (i % 2 == 0 ? 10 : -1) : (i % 2 == 0 ? 1 : -10));
    }
    SmallStudy study(columns, phenotype);
    study.add(phenotype);
    const Result result = study.run();
    EXPECT_FALSE(result.has_model);
    EXPECT_EQ(result.permuted, std::vector{0.5});
    EXPECT_THAT(study.console, HasSubstr("LARS Method find there aren't any model for the data\n"));
}

TEST(EnsembleStage, StopsWhereSettingsAskForMoreThanWasScreened) {
    const Columns columns(3, std::vector<signed char>(10));
    const struct {
        int individuals, markers, permutations;
        const char* stopped;
    } rows[] = {
        {11, 3, 0, "11 individuals (Sample_size) but only 10"},
        {10, 4, 0, "4 markers (Best_m) but only 3"},
        {10, 3, 2, "2 permuted data sets (Number_of_permutation) but only 0"},
    };
    for (const auto& row : rows) {
        SmallStudy study(columns, {0, 1, 0, 1, 0, 1, 0, 1, 0, 1});
        study.settings.builder.individuals = row.individuals;
        study.settings.builder.markers = row.markers;
        study.settings.builder.permutations = row.permutations;
        EXPECT_EQ(stop_of([&] { study.run(); }), "0 find error, the ensemble stage needs " +
                                                     std::string(row.stopped) + " were screened\n");
        EXPECT_EQ(study.left.design, "");
    }
}

// Without controls the second marker's p-value is not a number, which fails no comparison: both are
// kept, and the first one has one cell only.
TEST(EnsembleStage, AStopLeavesTheTextsOfTheDataSetBefore) {
    SmallStudy study({kHalf, std::vector<signed char>(40)}, phenotype_of_half(4));
    study.add(std::vector<short>(40, 1));
    study.settings.builder.max_retain = 2;
    study.best = {{0, 1}, {1, 0}};
    EXPECT_EQ(stop_of([&] { study.run(); }),
              "0 find error BestClusterNum don't equal case, BestClusterNum=1 Tnum=1 numcom=0\n");
    EXPECT_THAT(study.console, HasSubstr("csm end\n"));
    EXPECT_THAT(study.console, EndsWith("\na too large, ITMAX too small in gcf\n"));
    EXPECT_THAT(study.left.design, StartsWith("0.500000 1 0 \n"));
    EXPECT_THAT(study.left.coefficients, StartsWith("2\n1\nbeta[ 0 ]= "));
    EXPECT_EQ(study.modelled, std::vector{0});
}

// Nobody is told of a model that a data set, the observed one included, has not come to.
TEST(EnsembleStage, AStopOfTheObservedDataSetLeavesNothing) {
    SmallStudy study({std::vector<signed char>(40), kHalf}, std::vector<short>(40, 1));
    study.settings.builder.max_retain = 2;
    EXPECT_THAT(stop_of([&] { study.run(); }), StartsWith("0 find error BestClusterNum"));
    EXPECT_EQ(study.modelled, std::vector<int>());
    EXPECT_EQ(study.left.design + study.left.coefficients, "");
}

// The two intermediate files of an earlier form of the program, after the observed data set.
TEST(ModelStage, DesignAndCoefficientsOfTheGoldenCases) {
    for (const std::string& name : kGoldenCases) {
        GoldenStudy golden(name);
        const auto& [genotypes, observed, table, clusters] = golden.study;
        const PhenotypeRows phenotypes(observed);
        ScreeningOptions options;
        options.kept = golden.settings.builder.markers;
        std::vector<std::vector<int>> best;
        Told told;
        screen_data_sets(genotypes, phenotypes, table, options, told.diagnostics,
                         [&](int, ScreenedDataSet&& s) { best.push_back(std::move(s.best)); });
        for (const int threads : {1, 3}) {
            SCOPED_TRACE(name + ", threads " + std::to_string(threads));
            ModelStage stage(genotypes, phenotypes, best, golden.settings.builder, threads, false);
            stage.run(0, 1, [&](int, const ModelledDataSet& modelled) {
                EXPECT_EQ(modelled.design->text(), golden.expected("output_X_Y.observed.txt"));
                EXPECT_EQ(modelled.selection ? coefficient_text(*modelled.selection) : "",
                          golden.expected("beta.observed.txt"));
            });
        }
    }
}

}  // namespace
}  // namespace vort::testing
