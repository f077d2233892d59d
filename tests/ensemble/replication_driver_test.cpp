// The ensemble stage as a whole: what it records, ranks and writes, against a plain retelling; the
// outcomes without a model; its ends.
#include "ensemble/replication_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "csm/plain_kernels.h"
#include "ensemble/csm_lars.h"
#include "ensemble/importance.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

std::string short_form(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    return std::isnan(value) ? "-nan" : text;
}

class Ensemble : public BuilderTest {
  protected:
    // A study with effects, and as many permuted data sets.
    std::unique_ptr<Study> random_study(std::uint64_t seed, int n, int m, int permutations) {
        std::mt19937_64 random(seed);
        std::vector<short> phenotype(n);
        for (short& y : phenotype) y = static_cast<short>(random() % 2);
        auto study =
            std::make_unique<Study>(random_genotypes(random, n, m, 20, phenotype), phenotype);
        for (int k = 0; k < permutations; ++k) {
            std::vector<int> ranking = study->ranking(0);
            std::shuffle(ranking.begin(), ranking.end(), random);
            std::shuffle(phenotype.begin(), phenotype.end(), random);
            study->add_data_set(phenotype, ranking);
        }
        return study;
    }

    std::vector<int> run(Study& study) {
        ns = study.individuals();
        nm = study.markers();
        const ConsoleCapture console;
        const std::unique_ptr<int[]> list(
            permutation_simulation1(study.individuals(), study.markers(), study.x(), study.y(),
                                    study.rankings(), study.data_sets() - 1, 1, &count_));
        printed_ = console.text();
        std::vector<int> result;
        for (int i = 0; result.empty() || result.back() > 0; ++i) result.push_back(list[i]);
        return result;
    }

    int count_ = -1;
    std::string printed_;
};

// What the files of the observed data set say, walked column by column.
std::vector<output_information> plain_learners(int m, std::vector<double>& importance,
                                               int& cells_of_another_group) {
    BestClusterInformationArray records;
    records.getbestmarker("output_X_Y.txt");
    double* beta = nullptr;
    double* second = nullptr;
    int lines = 0;
    readbeta("beta.txt", &beta, &lines, &second);
    const std::unique_ptr<double[]> own_beta(beta);
    const std::unique_ptr<double[]> own_second(second);
    std::vector<output_information> learners;
    importance.assign(m + 1, 0.0);
    int column = 0;
    for (const auto& record : records.items) {
        int recorded = 0;
        for (unsigned g = 0; g + 1 < record->group_count_copy; ++g) {
            if (record->group_frequency[g] <= 0 || record->group_frequency[g] >= 1) continue;
            const int b = column++;
            if (beta[b] == 0) continue;
            output_information one;
            one.id = static_cast<int>(learners.size()) + 1;
            one.nmarker = static_cast<int>(record->marker_count);
            one.beta = beta[b];
            one.importance = std::fabs(beta[b]) / one.nmarker / second[b];
            one.average = record->group_average[g];
            const std::vector<int> set = plain_set(record->combination_index, m, one.nmarker);
            std::copy(set.begin(), set.end(), one.marker.begin() + 1);
            for (const int i : set) importance[i] += one.importance;
            for (unsigned slot = 1; slot < record->slots; ++slot) {
                const int code = static_cast<int>(record->genotype_code[slot]);
                for (unsigned q = 0; q < record->group_num; ++q) {
                    if (record->group_members[q][slot] == 0) continue;
                    one.cluster[code] = static_cast<int>(q);
                    if (static_cast<int>(q) == recorded) one.cell[one.ncell++] = code;
                }
            }
            cells_of_another_group += static_cast<int>(g) != recorded ? 1 : 0;
            ++recorded;
            learners.push_back(one);
        }
    }
    return learners;
}

TEST_F(Ensemble, RecordsBaseLearnersAndRanksTheirMarkers) {
    int models = 0;
    int cells_of_another_group = 0;
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const int m = 6;
        write_settings({60, m, 4});
        const auto study = random_study(seed, 60, m, 0);
        const std::vector<int> list = run(*study);
        std::vector<double> importance;
        const auto plain = plain_learners(m, importance, cells_of_another_group);
        ASSERT_EQ(count_, static_cast<int>(plain.size()));
        ASSERT_EQ(base_learner.size(), plain.size());
        for (std::size_t b = 0; b < plain.size(); ++b) {
            EXPECT_EQ(base_learner[b].id, plain[b].id);
            EXPECT_EQ(base_learner[b].marker, plain[b].marker);
            EXPECT_EQ(base_learner[b].cluster, plain[b].cluster);
            EXPECT_EQ(base_learner[b].cell, plain[b].cell);
            EXPECT_EQ(bits(base_learner[b].beta), bits(plain[b].beta));
            EXPECT_EQ(bits(base_learner[b].importance), bits(plain[b].importance));
            EXPECT_EQ(bits(base_learner[b].average), bits(plain[b].average));
        }
        std::string markers, measures, selected = "0";
        for (std::size_t i = 0; i + 1 < list.size(); ++i) {
            markers += std::to_string(list[i]) + " ";
            measures += std::to_string(static_cast<int>(importance[list[i]])) + " ";
            EXPECT_GE(importance[list[i == 0 ? 0 : i - 1]], importance[list[i]]);
        }
        for (int i = 1; i <= m; ++i) {
            selected += importance[i] > 0 ? "1" : "0";
            EXPECT_EQ(std::count(list.begin(), list.end(), i), importance[i] > 0 ? 1 : 0);
        }
        EXPECT_THAT(printed_, HasSubstr("drop marker is " + markers + "\nimportantmeasure is " +
                                        measures + "\n" + selected + "\n"));
        models += count_ > 0 ? 1 : 0;
        // Without permutations there is no p-value.
        if (count_ == 0) continue;
        EXPECT_THAT(printed_, HasSubstr("pvalue=-nan\n"));
        EXPECT_THAT(read_file("P_value.txt"), HasSubstr("Overall P-value=-nan\n\nThe value"));
        EXPECT_THAT(read_file("P_value.txt"), EndsWith("permuted data sets\n\n"));
    }
    EXPECT_GT(models, 6);
    EXPECT_GT(cells_of_another_group, 0) << "no seed reports the cells of an earlier group";
}

TEST_F(Ensemble, PvalueIsTheShareOfStrongerPermutations) {
    std::vector<double> shares;
    for (const std::uint64_t seed : {3U, 5U, 8U, 13U}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const int B = 4;
        write_settings({40, 4, 2, B});
        const auto study = random_study(seed, 40, 4, B);
        run(*study);
        if (count_ == 0) continue;
        const std::string written = read_file("P_value.txt");
        init_rand1();
        CSM_LARS model(prefix_);
        std::vector<double> S;
        for (int r = 0; r <= B; ++r) {
            double ignored[5];
            S.push_back(model.run(r, 40, 4, study->x(), study->y(), study->rankings(), B, 1, 0,
                                  ignored, ignored + 1, ignored + 2, ignored + 3, ignored + 4));
        }
        const double p = static_cast<double>(std::count_if(S.begin(), S.end(),
                                                           [&](double s) { return s < S[0]; })) /
                         B;
        shares.push_back(p);
        const std::string T0 = "T0=" + short_form(1 - S[0]);
        std::string expected =
            "P-value information\n===================\nOverall P-value=" + short_form(p) +
            "\n\nThe value of statistics in original data set\n" + T0 +
            "\n\nThe values of the statistics in permuted data sets\n\n";
        for (int k = 1; k <= B; ++k) {
            const double T = S[k] >= 0 && S[k] < 1 ? 1 - S[k] : 0;
            expected += T0 + "\t T" + std::to_string(k) + "=" + short_form(T) + "\n";
            EXPECT_THAT(printed_, HasSubstr("permutation = " + std::to_string(k - 1) + " \n"));
            EXPECT_THAT(printed_, HasSubstr("Cp0=" + short_form(S[0]) +
                                            " Cp_per=" + short_form(S[k]) + "\n"));
        }
        EXPECT_EQ(written, expected);
        EXPECT_EQ(printed_.find("Best marker is ") != std::string::npos, p < 0.05);
        EXPECT_EQ(printed_.find("Importantmeasure is ") != std::string::npos, p < 0.05);
    }
    EXPECT_NE(std::count(shares.begin(), shares.end(), 0.0), 0);
    EXPECT_GT(*std::max_element(shares.begin(), shares.end()), 0.0);
}

constexpr const char* kNoModelPvalues =
    "P-value information\n===================\nOverall P-value=1\n\n"
    "The value of statistics in original data set\nT0=0.5\n\n"
    "The values of the statistics in permuted data sets\n\nT0=0.5\t T1=0.5\nT0=0.5\t T2=0.5\n";

// Nothing passes the cut-off; what an earlier run left must not stand in for a model.
TEST_F(Ensemble, NoBaseLearner) {
    write_settings({40, 3, 2, 2, "1e-12"});
    write_file("beta.txt", "1\n1\nbeta[ 0 ]= 1 1\n");
    const auto study = random_study(1, 40, 3, 2);
    EXPECT_EQ(run(*study), (std::vector<int>{-1}));
    EXPECT_EQ(count_, 0);
    EXPECT_TRUE(printed_.starts_with("test_method=newCSM\nnmarker=3\nnsample=40\ncsm begin\n"));
    EXPECT_THAT(printed_, EndsWith("csm end\nCSM Method find there aren't any model for the data\n"
                                   "drop marker is \nimportantmeasure is \n0000\n"));
    EXPECT_EQ(read_file("P_value.txt"), kNoModelPvalues);
    EXPECT_THAT(
        read_file("Final_result.txt"),
        EndsWith(" \nThe first ten marker of last  individual " +
                 std::to_string(study->x()[39][0]) + " " + std::to_string(study->x()[39][1]) + " " +
                 std::to_string(study->x()[39][2]) + " \n"));
    EXPECT_FALSE(std::filesystem::exists("beta.txt"));
}

// The means of the two genotypes differ, the shares above the mean do not: the marker is kept, but
// both cells end in one group, and no column is left.
TEST_F(Ensemble, BaseLearnersWithoutAColumn) {
    write_settings({40, 1, 2, 2});
    std::vector<std::string> genotypes;
    std::vector<short> phenotype;
    for (int i = 0; i < 40; ++i) {
        genotypes.emplace_back(i < 20 ? "0" : "1");
        phenotype.push_back(
            static_cast<short>(i < 20 ? (i % 2 == 0 ? 10 : -1) : (i % 2 == 0 ? 1 : -10)));
    }
    Study study(genotypes, phenotype);
    study.add_data_set(phenotype, {0});
    study.add_data_set(phenotype, {0});
    EXPECT_EQ(run(study), (std::vector<int>{-1}));
    EXPECT_THAT(read_file("output_X_Y.txt"), HasSubstr("para  40 0\n<number 0>\n"));
    EXPECT_THAT(printed_, HasSubstr("LARS Method find there aren't any model for the data\n"));
    EXPECT_EQ(read_file("P_value.txt"), kNoModelPvalues);
}

TEST_F(Ensemble, MoreAskedForThanScreenedEndsTheProgram) {
    const auto study = random_study(1, 10, 3, 1);
    const auto run_quietly = [&] {
        console_on_standard_error();
        permutation_simulation1(10, 3, study->x(), study->y(), study->rankings(), 1, 1, &count_);
    };
    const struct {
        Settings settings;
        const char* message;
    } cases[] = {
        {{11, 3, 1, 1}, "needs 11 individuals \\(Sample_size\\) but only 10 were screened"},
        {{10, 4, 1, 1}, "needs 4 markers \\(Best_m\\) but only 3 were screened"},
        {{10, 3, 1, 2}, "needs 2 permuted data sets \\(Number_of_permutation\\) but only 1 were"},
    };
    for (const auto& c : cases) {
        write_settings(c.settings);
        EXPECT_EXIT(run_quietly(), ExitedWithCode(0), c.message);
    }
}

TEST_F(Ensemble, UnwritablePvaluesEndTheProgram) {
    write_settings({10, 3, 0, 0});
    std::filesystem::create_directory("P_value.txt");
    const auto study = random_study(1, 10, 3, 0);
    const auto run_quietly = [&] {
        permutation_simulation1(10, 3, study->x(), study->y(), study->rankings(), 0, 1, &count_);
    };
    EXPECT_EXIT(run_quietly(), ExitedWithCode(0), "P_value.txt");
    EXPECT_FALSE(std::filesystem::exists("Final_result.txt"));
}

}  // namespace
}  // namespace vort::testing
