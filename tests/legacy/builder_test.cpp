// The builder's class and what reads its files.
#include "csm/builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "csm/imputation.h"
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
    const std::string text = read_file("stored.txt");
    BestClusterInformationArray array;
    ASSERT_EQ(array.getbestmarker("stored.txt"), 5);
    EXPECT_TRUE(array.items[3] == nullptr && array.items[4]->combination_index == 5);
    array.items[4]->Store("again.txt", 4);
    EXPECT_EQ(read_file("again.txt"), text);
    for (const auto& [cut, instead, details] :
         {std::array{"1 2 7", "25 2 7", "with 25 markers in 2 groups"},
          {"5 4 2", "5 4 3", "with 4 slots"},
          {"0100\n", "012\n", "in group 0, slot 2"}}) {
        std::string damaged = text;
        write_file("stored.txt", damaged.replace(damaged.find(cut), 5, instead));
        expect_end([] { return BestClusterInformation::ReStore("stored.txt", 4); },
                   std::string("^find error in BCI file ") + details);
    }
}

TEST_F(LegacyBuilder, CoefficientsAndShares) {
    write_file("beta.txt", "3\n2\nbeta[ 0 ]= -0.5 0.25\nbeta[ 2 ]= 1e-7 0.125\n");
    const ConsoleCapture console;
    double *beta = nullptr, *second = nullptr;
    int lines = 0;
    ASSERT_EQ(readbeta("beta.txt", &beta, &lines, &second), 3);
    const std::unique_ptr<double[]> own_beta(beta), own_second(second);
    EXPECT_TRUE(lines == 2 && beta[0] == -0.5 && beta[1] == 0 && second[2] == 0.125);
    BestClusterInformation pair(2, 2, 5);
    pair.combination_index = 6;  // of five markers: 2 and 4
    pair.AddMemberInGroup(0, 2, 7);
    std::vector<double> importance = {-1, 0, 0.5, 0, 1, 0};
    int markers[3] = {}, cells[10] = {}, ncell = 0;
    calculationimportfactor(&pair, importance.data(), -0.5, 0.01, 1, markers, &ncell, cells, 0);
    EXPECT_EQ(importance, (std::vector<double>{-1, 0, 25.5, 0, 26, 0}));
    EXPECT_TRUE(markers[1] == 2 && markers[2] == 4 && ncell == 1 && cells[0] == 7);
    EXPECT_EQ(console.text(),
              "beta[0]=-0.5 beta[2]=1e-07 \n"
              "importantfactor[2]=25.5 beta[q]=-0.5\n"
              "importantfactor[4]=26 beta[q]=-0.5\n"
              "GenotypeCode of group number=0\n7 \n");
    write_file("source.txt", "\n \t a\xFF rest");
    EXPECT_EQ(filecopy("source.txt", "copy.txt"), 0);
    EXPECT_EQ(read_file("copy.txt"), "a\n");
}

// Worked by hand. One method for each: the cells' counts are cases and controls, or individuals.
TEST_F(LegacyBuilder, Clusterings) {
    write_settings(60, 1);
    CSM csm(no_prefix);
    csm.case_num = 20;  // the test of carriers of two is the best of those of OneMarkerCluster
    const auto means = [&](auto sum, auto count, auto, auto... rest) {
        csm.cluster(sum, count, rest...);
    };
    const auto of = [&](auto method) { return [&csm, method](auto... a) { (csm.*method)(a...); }; };
    const auto expect = [](const char* expected, auto cluster, std::vector<double> value,
                           std::vector<int> first, std::vector<int> second, int g) {
        std::vector<int> group(value.size());
        cluster(value.data(), first.data(), second.data(), group.data(),
                static_cast<int>(value.size()) - 1, g);
        std::string found;
        for (std::size_t c = 1; c < group.size(); ++c) found += std::to_string(group[c]);
        EXPECT_EQ(found, expected);
    };
    const std::vector<int> ones(6, 1), none(6, 0);
    expect("2221", means, {0, 0, 4.05, 0.55, 9}, {0, 1, 9, 1, 9}, none, 2);  // individuals weigh
    expect("321", means, {0, -1, 7, 1}, {0, 1, 0, 1}, none, 3);  // no individual: the mean is 0
    expect("12", means, {0, 1, 0}, ones, none, 3);
    expect("1222", of(&CSM::cluster1), {0, 1, 0.45, 0.2, -1}, ones, none, 2);
    expect("1222", of(&CSM::cluster3), {0, 1, 0.45, 0.2, -1}, ones, none, 2);
    expect("1123", of(&CSM::cluster2), {0, 0, 0.1, 1, 1.05}, ones, none, 4);  // one merge at least
    expect("12131", of(&CSM::cluster4), {0, 0.5, 9, 1.1, 0, 0.7}, ones, none, 3);
    expect("112", of(&CSM::OneMarkerCluster), {0, 0, 0, 0}, {0, 7, 5, 8}, {0, 19, 19, 2}, 3);
}

constexpr int kIndividuals = 90;
constexpr int kMarkers = 7;

struct Study {
    std::vector<std::vector<char>> genotypes;
    std::vector<char*> rows;
    std::vector<short> phenotype;
    std::vector<int> ranking;
};

Study random_study(unsigned seed, unsigned missing_in_100) {
    std::mt19937 random(seed);
    Study study;
    for (int i = 0; i < kIndividuals; ++i) {
        study.phenotype.push_back(static_cast<short>(seed == 3 && i == 5 ? 2 : random() % 2));
        auto& row = study.genotypes.emplace_back();
        for (int j = 0; j < kMarkers; ++j) {
            const bool effect = j < 2 && study.phenotype[i] == 1;
            const int code = static_cast<int>(effect ? 1 + random() % 2 : random() % 3);
            row.push_back(static_cast<char>(random() % 100 < missing_in_100 ? -1 : code));
        }
    }
    for (auto& row : study.genotypes) study.rows.push_back(row.data());
    for (int j = 0; j < kMarkers; ++j) study.ranking.push_back((j + 1) % kMarkers);
    return study;
}

// What the engine makes of the same data set, and says of it.
struct Built {
    std::string text;
    std::string design;
    Generator end;
};

Built build(const Study& study, const BuilderSettings& settings) {
    const Genotypes genotypes = packed(study.rows.data(), kIndividuals, kMarkers);
    const BuilderInput input{genotypes, study.phenotype, study.ranking};
    const BuilderData data(input, settings, false, 1);
    const KeptSets kept = search_sets(data, settings, 1, true);
    std::vector<ScoredSet> scored;
    std::vector<ClusterRecord> records;
    for (int s = 0; s < kept.count(); ++s) {
        const bool announce = s == static_cast<int>(kept.markers.size());
        scored.push_back(score_set(data, settings, kept, s, Generator(), announce, true));
        records.push_back(scored.back().record);
    }
    const Imputation imputation(data, Generator());
    Transcript out(true);
    print_build(data, input, imputation, kept, scored, false, out);
    Generator end;
    end.skip(static_cast<std::uint64_t>(builder_draws(data, kept)));
    return {std::string(out.text()), Design(data, imputation, std::move(records)).text(), end};
}

// Sets are kept, genotypes imputed; the last phenotype has a third value.
TEST_F(LegacyBuilder, ARunIsTheEngines) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        SCOPED_TRACE(seed);
        Study study = random_study(seed, seed == 1 ? 0 : 4);
        write_settings(kIndividuals, kMarkers);
        init_rand1();
        clustermethod_print = 1;
        CSM_LARS model(no_prefix);
        CSM& csm = model.csm;
        const Built expected = build(study, csm.settings());
        short* y = study.phenotype.data();
        int* ranking = study.ranking.data();
        const ConsoleCapture console;
        csm.run(0, 0, 0, study.rows.data(), &y, &ranking, 0, 1);
        EXPECT_EQ(console.text(), expected.text);
        EXPECT_EQ(read_file("output_X_Y.txt"), expected.design);
        EXPECT_EQ(default_generator(), expected.end);
        EXPECT_EQ(csm.quantitative_trait, seed == 3 ? 1 : 0);
        EXPECT_EQ(csm.first_codes[0], study.rows[0][0]);
        EXPECT_LT(csm.Test(1, kMarkers), 1e-3) << "the first column, ranked last";
        BestClusterInformationArray array(1);
        int groups = 0;
        const double score = csm.objectivefunction_quantitive(1, kMarkers, &array, &groups);
        EXPECT_TRUE(score > 0.9 && score <= 1) << score;
        double stat[5] = {};
        EXPECT_LT(model.run(0, 0, 0, study.rows.data(), &y, &ranking, 0, 1, 1, &stat[0], &stat[1],
                            &stat[2], &stat[3], &stat[4]),
                  0.9);
    }
}

}  // namespace
}  // namespace vort::testing
