// The builder's class and what reads its files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ensemble/model_stage.h"
#include "legacy/csm_lars.h"
#include "legacy/genotype_data.h"
#include "legacy/globals.h"
#include "legacy/importance.h"
#include "legacy/random.h"
#include "support/console_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using ::testing::ElementsAre;

char no_prefix[1] = "";

class LegacyBuilder : public ::testing::Test {
  protected:
    LegacyBuilder() {
        init_rand1();
        clustermethod_print = 1;
        test_method_print = 0;
    }

    static void write_settings(int n, int m) {
        write_file("parameter.txt", "Sample_size " + std::to_string(n) + "\nBest_m " +
                                        std::to_string(m) +
                                        "\nMax_retain 3\n"
                                        "FDR_cutoff_for_candidate_locus_combinations 1\n");
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(LegacyBuilder, RecordsAreStoredAndRestored) {
    BestClusterInformation record(1, 2, 7);
    record.combination_index = 5;
    EXPECT_TRUE(record.AddMemberInGroup(0, 1, 2) == 0 && record.AddMemberInGroup(2, 1, 1) == -1);
    record.WriteGroupFrequency(0, 1.0 / 3, 0.75);
    EXPECT_TRUE(record.IncludeInGroup(2, 0) == 1 && record.IncludeInGroup(2, 1) == 0);
    record.Store("stored.txt", 4);
    BestClusterInformationArray array;
    ASSERT_EQ(array.getbestmarker("stored.txt"), 5);
    EXPECT_TRUE(array.items[3] == nullptr && array.items[4]->combination_index == 5);
    array.items[4]->Store("again.txt", 4);
    std::string text = read_file("stored.txt");
    EXPECT_EQ(read_file("again.txt"), text);
    write_file("stored.txt", text.replace(text.find("0100\n"), 5, "012\n"));
    expect_end([] { return BestClusterInformation::ReStore("stored.txt", 4); },
               "^find error in BCI file in group 0, slot 2");
}

TEST_F(LegacyBuilder, CoefficientsAndShares) {
    write_file("beta.txt", "\n 3\n2\nbeta[ 0 ]= -0.5 0.25\nbeta[ 2 ]= 1e-7 0.125\n\xFF rest");
    EXPECT_EQ(filecopy("beta.txt", "copy.txt"), 0);
    const ConsoleCapture console;
    double *beta = nullptr, *second = nullptr;
    int lines = 0;
    ASSERT_EQ(readbeta("copy.txt", &beta, &lines, &second), 3);
    const std::unique_ptr<double[]> own_beta(beta), own_second(second);
    EXPECT_TRUE(lines == 2 && beta[0] == -0.5 && beta[1] == 0 && second[2] == 0.125);
    BestClusterInformation pair(2, 2, 5);
    pair.combination_index = 6;  // of five markers: 2 and 4
    pair.AddMemberInGroup(0, 2, 7);
    std::vector<double> importance = {-1, 0, 0.5, 0, 1, 0};
    int markers[3] = {}, cells[10] = {}, ncell = 0;
    calculationimportfactor(&pair, importance.data(), -0.5, 0.01, 0, markers, &ncell, cells, 0);
    EXPECT_EQ(importance, (std::vector<double>{-1, 0, 25.5, 0, 26, 0}));
    EXPECT_TRUE(markers[1] == 2 && markers[2] == 4 && ncell == 1 && cells[0] == 7);
    EXPECT_EQ(console.text(), "beta[0]=-0.5 beta[2]=1e-07 \nGenotypeCode of group number=0\n7 \n");
}

TEST_F(LegacyBuilder, ClusteringsTakeTheirArguments) {
    write_settings(60, 1);
    CSM csm(no_prefix);
    csm.case_num = 20;
    double sum[] = {0, -1, 7, 1}, value[] = {0, 0.5, 9, 1.1, 0, 0.7};
    int count[] = {0, 1, 0, 1}, cases[] = {0, 7, 5, 8, 1, 1}, controls[] = {0, 19, 19, 2, 1, 1};
    int group[6] = {};
    csm.cluster(sum, count, group, 3, 3);
    EXPECT_THAT(group, ElementsAre(0, 3, 2, 1, 0, 0)) << "no individual: the mean is 0";
    csm.OneMarkerCluster(nullptr, cases, controls, group, 3, 3);
    EXPECT_THAT(group, ElementsAre(0, 1, 1, 2, 0, 0)) << "carriers of two are the best test";
    csm.cluster4(value, cases, controls, group, 5, 3);
    EXPECT_THAT(group, ElementsAre(0, 1, 2, 1, 3, 1)) << "by averages";
}

struct Study {
    std::vector<std::vector<char>> genotypes;
    std::vector<char*> rows;
    std::vector<short> phenotype;
    std::vector<int> ranking;
};

// Of the third seed the phenotype has a third value.
Study random_study(unsigned seed, int individuals, int markers) {
    std::mt19937 random(seed);
    Study study;
    for (int i = 0; i < individuals; ++i) {
        study.phenotype.push_back(static_cast<short>(seed == 3 && i == 5 ? 2 : random() % 2));
        auto& row = study.genotypes.emplace_back();
        for (int j = 0; j < markers; ++j) {
            const bool effect = j < 2 && study.phenotype[i] == 1;
            const int code = static_cast<int>(effect ? 1 + random() % 2 : random() % 3);
            row.push_back(static_cast<char>(seed > 1 && random() % 25 == 0 ? -1 : code));
        }
    }
    for (auto& row : study.genotypes) study.rows.push_back(row.data());
    for (int j = 0; j < markers; ++j) study.ranking.push_back((j + 1) % markers);
    return study;
}

TEST_F(LegacyBuilder, ARunIsTheEngines) {
    const int n = 90, m = 7;
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        Study study = random_study(seed, n, m);
        write_settings(n, m);
        init_rand1();
        clustermethod_print = 1;
        CSM_LARS model(no_prefix);
        CSM& csm = model.csm;
        short* y = study.phenotype.data();
        int* ranking = study.ranking.data();
        const ConsoleCapture console;
        double stat[5] = {};
        const double statistic = model.run(0, n, m, study.rows.data(), &y, &ranking, 0, 1, 0,
                                           &stat[0], &stat[1], &stat[2], &stat[3], &stat[4]);

        const Genotypes genotypes = packed(study.rows.data(), n, m);
        const PhenotypeRows phenotypes(study.phenotype);
        ModelStage stage(genotypes, phenotypes, {&study.ranking, 1}, csm.settings(), 1, true);
        stage.run(0, 1, [&](int, const ModelledDataSet& expected) {
            EXPECT_EQ(statistic, expected.statistic);
            EXPECT_EQ(console.text(), expected.transcript.text());
            EXPECT_EQ(read_file("output_X_Y.txt"), expected.design->text());
            EXPECT_EQ(read_file("beta.txt"), coefficient_text(*expected.selection));
        });
        EXPECT_EQ(default_generator(), stage.next_draw());
        EXPECT_EQ(csm.quantitative_trait, seed == 3 ? 1 : 0);
        EXPECT_EQ(csm.first_codes[0], study.rows[0][0]);
        EXPECT_LT(csm.Test(1, m), 1e-3) << "the first column, ranked last";
        BestClusterInformationArray array(1);
        const double score = csm.objectivefunction_quantitive(1, m, &array, nullptr);
        EXPECT_TRUE(score > 0.9 && score <= 1) << score;
    }
}

}  // namespace
}  // namespace vort::testing
