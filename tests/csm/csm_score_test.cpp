// The permutation score: against the plain form to the bit, known outcomes, and its ends.
#include <gtest/gtest.h>

#include "csm/plain_kernels.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmScore = BuilderTest;

void expect_same_record(const BestClusterInformation& record, const BestClusterInformation& plain) {
    EXPECT_EQ(record.slots, plain.slots);
    EXPECT_EQ(record.marker_total, plain.marker_total);
    EXPECT_EQ(record.group_count_copy, plain.group_count_copy);
    EXPECT_EQ(record.marker_count, plain.marker_count);
    EXPECT_EQ(record.combination_index, plain.combination_index);
    ASSERT_EQ(record.group_num, plain.group_num);
    EXPECT_EQ(record.genotype_code, plain.genotype_code);
    for (std::size_t q = 0; q < plain.group_num; ++q) {
        EXPECT_EQ(bits(record.group_frequency[q]), bits(plain.group_frequency[q]));
        EXPECT_EQ(bits(record.group_average[q]), bits(plain.group_average[q]));
        for (unsigned long slot = 0; slot < plain.slots; ++slot) {
            EXPECT_EQ(record.group_members[q][slot] != 0, plain.group_members[q][slot] != 0);
        }
    }
}

void expect_same_score(CSM& csm, int k, int c) {
    SCOPED_TRACE("set " + std::to_string(c) + " of order " + std::to_string(k));
    const PlainScore plain = plain_score(csm, k, c);
    if (plain.record == nullptr) return;
    const std::vector<double> before(csm.yy.data() + 1, csm.yy.data() + csm.Sample_size + 1);
    BestClusterInformationArray array(1);
    int groups = -1;
    const ConsoleCapture console;
    const double value = csm.objectivefunction_quantitive(k, c, &array, &groups);
    ASSERT_EQ(bits(value), bits(plain.value));
    ASSERT_EQ(groups, plain.best_groups);
    ASSERT_EQ(console.text(), plain.printed);
    ASSERT_EQ(random_state(), plain.random_state);
    ASSERT_TRUE(std::equal(before.begin(), before.end(), csm.yy.data() + 1)) << "yy not restored";
    ASSERT_EQ(array.count(), 1);
    expect_same_record(*array.items[0], *plain.record);
}

TEST_F(CsmScore, AgreesWithThePlainFormToTheBit) {
    // The last seeds stand around the widths of words and counters.
    const int sizes[] = {63, 64, 65, 127, 128, 129, 255, 256, 257, 300, 511, 513};
    for (std::uint64_t seed = 1; seed <= 92 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Shape shape(seed, seed <= 80 ? 0 : sizes[seed - 81]);
        Study study(shape.genotypes, shape.phenotype);
        CSM csm(prefix_);
        take_in(csm, study);
        clustermethod = seed % 10 == 0 ? static_cast<int>(1 + seed / 10 % 4) : 0;
        clustermethod_print = seed % 7 == 0 ? 1 : 0;
        expect_same_score(csm, 1, 1 + static_cast<int>(seed) % shape.m);
        if (shape.m < 2) continue;
        const int pairs = shape.m * (shape.m - 1) / 2;
        for (const int c : {1, pairs}) expect_same_score(csm, 2, c);
    }
}

// An imputed genotype left out of one set counts in the next, and a second data set of the same
// builder starts clean.
TEST_F(CsmScore, DataSetsDoNotLeakIntoOneAnother) {
    std::mt19937_64 random(77);
    std::vector<short> phenotype(40);
    for (short& y : phenotype) y = static_cast<short>(random() % 2);
    write_settings({40, 3});
    Study study(random_genotypes(random, 40, 3, 200, phenotype), phenotype);
    std::reverse(phenotype.begin(), phenotype.end());
    study.add_data_set(phenotype, {2, 0, 1});
    CSM csm(prefix_);
    for (const int current : {0, 1, 0}) {
        take_in(csm, study, current);
        for (int c = 1; c <= 3; ++c) {
            EXPECT_EQ(bits(csm.Test(2, c)), bits(plain_quick_test(csm, 2, c)));
            expect_same_score(csm, 2, c);
        }
    }
}

TEST_F(CsmScore, PerfectSeparationScoresOne) {
    std::vector<std::string> genotypes;
    std::vector<short> phenotype;
    for (int i = 0; i < 24; ++i) {
        genotypes.emplace_back(i % 2 == 0 ? "20" : i % 3 == 0 ? "00" : "01");
        phenotype.push_back(static_cast<short>(i % 2 == 0));
    }
    write_settings({24, 2});
    Study study(genotypes, phenotype);
    CSM csm(prefix_);
    take_in(csm, study);
    BestClusterInformationArray array(1);
    EXPECT_EQ(csm.objectivefunction_quantitive(2, 1, &array, nullptr), 1.0);
    const BestClusterInformation& record = *array.items[0];
    const int cases = record.getcluster_num(6);
    EXPECT_EQ(cases, 0) << "the highest cell mean is in the first group";
    EXPECT_EQ(record.group_average[cases], 1.0);
    EXPECT_EQ(record.group_frequency[cases], 0.5);
    EXPECT_NE(record.getcluster_num(0), cases);
    EXPECT_NE(record.getcluster_num(1), cases);
}

TEST_F(CsmScore, NothingToClusterEndsTheProgram) {
    const struct {
        std::vector<std::string> genotypes;
        const char* message;
    } cases[] = {
        {{"1", "1", "1"},
         "^find error BestClusterNum don't equal case, BestClusterNum=1 Tnum=1 "
         "numcom=0\n$"},
        {{"-", "-", "-"},
         "^find error BestClusterNum<0 or BestClusterNum >Tnum, "
         "BestClusterNum=0 Tnum=0\n$"},
    };
    write_settings({3, 1});
    for (const auto& c : cases) {
        Study study(c.genotypes, {0, 1, 1});
        CSM csm(prefix_);
        take_in(csm, study);
        const auto score = [&] {
            console_on_standard_error();
            BestClusterInformationArray array(1);
            csm.objectivefunction_quantitive(1, 1, &array, nullptr);
        };
        EXPECT_EXIT(score(), ::testing::ExitedWithCode(0), c.message);
    }
}

TEST_F(CsmScore, RecordOfUnknownGroupCountEndsTheProgram) {
    write_settings({3, 1});
    CSM csm(prefix_);
    std::vector<std::unique_ptr<BestClusterInformation>> records;
    records.push_back(std::make_unique<BestClusterInformation>(1U, 2U, 1));
    BestClusterInformationArray array(1);
    const auto save = [&] {
        console_on_standard_error();
        csm.save_cluster_information(3, records, 3, 1, 1, &array, 3);
    };
    EXPECT_EXIT(save(), ::testing::ExitedWithCode(0),
                "BestClusterNum=3 Tnum=3 numcom=1\nBCI\\[2\\]->group_num=2\n$");
}

}  // namespace
}  // namespace vort::testing
