// The ensemble stage: the outcomes without a model, and its ends. Whole runs with a model are
// golden cases.
#include "ensemble/replication_driver.h"

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

// A study with effects, and as many permuted data sets.
Study random_study(std::uint64_t seed, int n, int m, int permutations) {
    std::mt19937_64 random(seed);
    std::vector<short> phenotype(n);
    for (short& y : phenotype) y = static_cast<short>(random() % 2);
    Study study(random_genotypes(random, n, m, 20, phenotype), phenotype);
    for (int k = 0; k < permutations; ++k) {
        std::vector<int> ranking(study.rankings()[0], study.rankings()[0] + m);
        std::shuffle(ranking.begin(), ranking.end(), random);
        std::shuffle(phenotype.begin(), phenotype.end(), random);
        study.add_data_set(phenotype, ranking);
    }
    return study;
}

class Ensemble : public BuilderTest {
  protected:
    std::vector<int> run(Study& study) {
        ns = study.individuals();
        nm = study.markers();
        const ConsoleCapture console;
        const std::unique_ptr<int[]> list(permutation_simulation1(
            ns, nm, study.x(), study.y(), study.rankings(), study.data_sets() - 1, 1, &count_));
        printed_ = console.text();
        std::vector<int> result;
        for (int i = 0; result.empty() || result.back() > 0; ++i) result.push_back(list[i]);
        return result;
    }

    int count_ = -1;
    std::string printed_;
};

constexpr const char* kNoModelPvalues =
    "P-value information\n===================\nOverall P-value=1\n\n"
    "The value of statistics in original data set\nT0=0.5\n\n"
    "The values of the statistics in permuted data sets\n\n";

// Nothing passes the cut-off; what an earlier run left must not stand in for a model.
TEST_F(Ensemble, NoBaseLearner) {
    write_settings({40, 3, 2, 2, "1e-12"});
    write_file("beta.txt", "1\n1\nbeta[ 0 ]= 1 1\n");
    Study study = random_study(1, 40, 3, 2);
    EXPECT_EQ(run(study), (std::vector<int>{-1}));
    EXPECT_EQ(count_, 0);
    EXPECT_TRUE(printed_.starts_with("test_method=newCSM\nnmarker=3\nnsample=40\ncsm begin\n"));
    EXPECT_THAT(printed_, EndsWith("csm end\nCSM Method find there aren't any model for the data\n"
                                   "drop marker is \nimportantmeasure is \n0000\n"));
    EXPECT_EQ(read_file("P_value.txt"),
              std::string(kNoModelPvalues) + "T0=0.5\t T1=0.5\nT0=0.5\t T2=0.5\n");
    std::string codes;
    for (int j = 0; j < 3; ++j) codes += std::to_string(study.x()[39][j]) + " ";
    EXPECT_THAT(read_file("Final_result.txt"), EndsWith("of last  individual " + codes + "\n"));
    EXPECT_FALSE(std::filesystem::exists("beta.txt"));
}

// The means of the two genotypes differ, the shares above the mean do not: the marker is kept, but
// both cells end in one group, and no column is left.
TEST_F(Ensemble, BaseLearnersWithoutAColumn) {
    write_settings({40, 1, 2});
    std::vector<std::string> genotypes;
    std::vector<short> phenotype;
    for (int i = 0; i < 40; ++i) {
        genotypes.emplace_back(i < 20 ? "0" : "1");
        phenotype.push_back(i < 20 ? (i % 2 == 0 ? 10 : -1) : (i % 2 == 0 ? 1 : -10));
    }
    Study study(genotypes, phenotype);
    EXPECT_EQ(run(study), (std::vector<int>{-1}));
    EXPECT_THAT(read_file("output_X_Y.txt"), HasSubstr("para  40 0\n<number 0>\n"));
    EXPECT_THAT(printed_, HasSubstr("LARS Method find there aren't any model for the data\n"));
    EXPECT_EQ(read_file("P_value.txt"), kNoModelPvalues);
}

// A permuted data set as good as the observed one does not count as stronger; a better one does.
TEST_F(Ensemble, PvalueIsTheShareOfStrongerPermutations) {
    write_settings({40, 1, 1, 2});
    std::vector<std::string> genotypes;
    std::vector<short> perfect, observed;
    for (int i = 0; i < 40; ++i) {
        genotypes.emplace_back(i < 20 ? "0" : "2");
        perfect.push_back(i < 20 ? 0 : 1);
        observed.push_back(i % 20 < 4 ? 1 - perfect.back() : perfect.back());
    }
    Study study(genotypes, observed);
    study.add_data_set(observed, {0});
    study.add_data_set(perfect, {0});
    EXPECT_EQ(run(study), (std::vector<int>{1, -1}));
    EXPECT_THAT(read_file("P_value.txt"), HasSubstr("Overall P-value=0.5\n"));
}

TEST_F(Ensemble, EndsOfTheProgram) {
    Study study = random_study(1, 10, 3, 1);
    const std::pair<Settings, const char*> cases[] = {
        {{11, 3, 1, 1}, "needs 11 individuals \\(Sample_size\\) but only 10 were screened"},
        {{10, 4, 1, 1}, "needs 4 markers \\(Best_m\\) but only 3 were screened"},
        {{10, 3, 1, 2}, "needs 2 permuted data sets \\(Number_of_permutation\\) but only 1 were"},
        {{10, 3, 0, 0}, "P_value.txt"},  // cannot be written
    };
    std::filesystem::create_directory("P_value.txt");
    for (const auto& [settings, message] : cases) {
        write_settings(settings);
        const auto run_to_the_end = [&] {
            permutation_simulation1(10, 3, study.x(), study.y(), study.rankings(), 1, 1, &count_);
        };
        expect_end(run_to_the_end, message);
        EXPECT_FALSE(std::filesystem::exists("Final_result.txt"));
    }
}

}  // namespace
}  // namespace vort::testing
