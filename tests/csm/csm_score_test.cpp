// The permutation score: against the plain form to the bit, known outcomes, and its ends.
#include "csm/plain_kernels.h"
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmScore = BuilderTest;

void expect_same_record(const BestClusterInformation& record, const BestClusterInformation& plain) {
    write_file("plain.txt", "");
    write_file("record.txt", "");
    plain.Store("plain.txt", 0);
    record.Store("record.txt", 0);
    EXPECT_EQ(read_file("record.txt"), read_file("plain.txt"));
    EXPECT_EQ(record.group_frequency, plain.group_frequency);
    EXPECT_EQ(record.group_average, plain.group_average);
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
        auto [study, settings] = random_shape(seed, seed <= 80 ? 0 : sizes[seed - 81]);
        const auto csm = builder_with(study, settings);
        const int m = settings.markers;
        clustermethod = seed % 10 == 0 ? static_cast<int>(1 + seed / 10 % 4) : 0;
        clustermethod_print = seed % 7 == 0 ? 1 : 0;
        expect_same_score(*csm, 1, 1 + static_cast<int>(seed) % m);
        if (m < 2) continue;
        for (const int c : {1, m * (m - 1) / 2}) expect_same_score(*csm, 2, c);
    }
}

TEST_F(CsmScore, PerfectSeparationScoresOne) {
    std::vector<std::string> genotypes;
    std::vector<short> phenotype;
    for (int i = 0; i < 24; ++i) {
        genotypes.emplace_back(i % 2 == 0 ? "20" : i % 3 == 0 ? "00" : "01");
        phenotype.push_back(static_cast<short>(i % 2 == 0));
    }
    Study study(genotypes, phenotype);
    BestClusterInformationArray array(1);
    EXPECT_EQ(builder_with(study)->objectivefunction_quantitive(2, 1, &array, nullptr), 1.0);
    const BestClusterInformation& record = *array.items[0];
    EXPECT_EQ(record.IncludeInGroup(6, 0), 1) << "the highest cell mean is in the first group";
    EXPECT_EQ(record.group_average[0], 1.0);
    EXPECT_EQ(record.group_frequency[0], 0.5);
    EXPECT_EQ(record.IncludeInGroup(0, 0) + record.IncludeInGroup(1, 0), 0);
}

TEST_F(CsmScore, NothingToClusterEndsTheProgram) {
    BestClusterInformationArray array(1);
    for (const auto& [code, message] :
         {std::pair{"1", " don't equal case, BestClusterNum=1 Tnum=1 numcom=0\n$"},
          {"-", "<0 or BestClusterNum >Tnum, BestClusterNum=0 Tnum=0\n$"}}) {
        Study study(std::vector<std::string>(3, code), {0, 1, 1});
        const auto csm = builder_with(study);
        expect_end([&] { csm->objectivefunction_quantitive(1, 1, &array, nullptr); },
                   std::string("^find error BestClusterNum") + message);
    }
    std::vector<std::unique_ptr<BestClusterInformation>> records(1);
    records[0] = std::make_unique<BestClusterInformation>(1U, 2U, 1);
    const auto csm = builder_of({3, 1});
    expect_end([&] { csm->save_cluster_information(3, records, 3, 1, 1, &array, 3); },
               "BestClusterNum=3 Tnum=3 numcom=1\nBCI\\[2\\]->group_num=2\n$");
}

}  // namespace
}  // namespace vort::testing
