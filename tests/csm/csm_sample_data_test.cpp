// Intake of a data set: imputation and its random stream, the two halves, permuting.
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmSampleData = BuilderTest;

int read(CSM& csm, Study& study, int current) {
    return csm.ReadSampleData(current, 0, 0, study.x(), study.y(), study.rankings(), 0, 0,
                              csm.Tgen.data(), csm.yy.data(), csm.missing_set.data());
}

// The first draws from seeds 1, 3, 5 are (171/30269 + 516/30309 + 850/30323) mod 1 and so on:
// 0.0507, 0.6596, 0.9607, 0.8330. Markers are walked before individuals.
TEST_F(CsmSampleData, ImputesByTheMarkersOwnFrequencies) {
    // Column 1: a third each, so 0.0507 is a 0, 0.6596 just a 1, and 0.9607 a 2. Column 2: all 1,
    // whatever is drawn. Column 3: known nowhere; a draw is no share of nothing, so all are 2.
    Study study({"01-", "-1-", "21-", "-1-", "-1-", "11-"}, {0, 1, 0, 1, 1, 0});
    study.add_data_set({0, 1, 0, 1, 1, 0}, {1, 1, 1});
    const auto csm = builder_of({6, 3});
    const ConsoleCapture console;
    ASSERT_EQ(read(*csm, study, 0), 0);
    EXPECT_EQ(console.text(), "read data finished\n");
    const int first[] = {0, 0, 2, 1, 2, 1};
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(csm->Tgen[i][1], first[i - 1]) << i;
        EXPECT_EQ(csm->Tgen[i][3], 2);
        EXPECT_EQ(csm->missing_set[i]->GetAt(1) != 0, i == 2 || i == 4 || i == 5);
        EXPECT_EQ(csm->missing_set[i]->GetAt(2), 0);
        EXPECT_NE(csm->missing_set[i]->GetAt(3), 0);
    }
    const std::array<int, 3> after = random_state();
    ASSERT_EQ(read(*csm, study, 1), 0);
    EXPECT_EQ(random_state(), after) << "nothing missing, nothing drawn";
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(csm->missing_set[i]->SizeofSet(), 0) << "left over";
}

TEST_F(CsmSampleData, CodeThatIsNoGenotypeIsRefused) {
    Study study({"0", "3"}, {0, 1});
    const auto csm = builder_of({2, 1});
    expect_end([&] { csm->run(0, 0, 0, study.x(), study.y(), study.rankings(), 0, 0); },
               "Data XX or parameter file\\(=parameter.txt\\) have some wrong  read marker "
               "gene=3\n$");
}

// Individuals are named by their genotype code at three markers, 0 .. 26.
TEST_F(CsmSampleData, CasesAreSpreadOverBothHalves) {
    const struct {
        std::vector<short> phenotype;
        std::vector<int> order;
    } cases[] = {
        // Cases first: 5 2 3 | 4 1 6; then from the second place on against the second half.
        {{0, 1, 1, 0, 1, 0}, {5, 4, 1, 2, 3, 6}},
        {{0, 0, 0, 1}, {3, 2, 4, 1}},
        {{1, 0, 0, 0, 0}, {3, 2, 1, 4, 5}},
        {{1, 1, 1, 0, 0}, {1, 3, 4, 2, 5}},
        {{0, 0, 0}, {1, 2, 3}},
        {{1, 1, 1, 1, 1}, {1, 2, 3, 4, 5}},
        {{0, 1}, {1, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.phenotype));
        const int n = static_cast<int>(c.phenotype.size());
        std::vector<std::string> rows;
        for (int i = 1; i <= n; ++i) {
            rows.push_back(std::to_string(i / 9) + std::to_string(i / 3 % 3) +
                           std::to_string(i % 3));
        }
        Study study(rows, c.phenotype);
        const auto csm = builder_of({n, 3});
        read(*csm, study, 0);
        const std::vector<bitset*> before = csm->missing_set;
        EXPECT_EQ(csm->init(csm->missing_set.data()),
                  std::count(c.phenotype.begin(), c.phenotype.end(), 1));
        for (int i = 1; i <= n; ++i) {
            const int* codes = csm->Tgen[i];
            const int id = 9 * codes[1] + 3 * codes[2] + codes[3];
            EXPECT_EQ(id, c.order[i - 1]) << "place " << i;
            EXPECT_EQ(csm->yy[i], c.phenotype[id - 1]);
            EXPECT_EQ(csm->missing_set[i], before[id]);
        }
    }
}

TEST_F(CsmSampleData, PermutingAndRestoring) {
    const int n = 12;
    const auto csm = builder_of({n, 1});
    for (int i = 1; i <= n; ++i) csm->yy[i] = 10 * i;
    csm->bakeup(csm->yy.data(), 0);
    std::vector<int> order(n + 1);
    randomsort(n, order.data());
    init_rand1();
    std::string first, head, tail;
    for (int i = 1; i <= n; ++i) {
        const std::string number = std::to_string(order[i]);
        if (i <= 9) first += number + " ";
        if (i <= 9) head += number + "0 ";
        if (i > n - 9) tail += number + "0 ";
    }
    const ConsoleCapture console;
    csm->mempermutation();
    EXPECT_EQ(console.text(), first + "\n" + head + "\n" + tail + "\n");
    for (int i = 1; i <= n; ++i) EXPECT_EQ(csm->yy[i], 10 * order[i]);
    csm->bakeup(csm->yy.data(), 1);
    for (int i = 1; i <= n; ++i) EXPECT_EQ(csm->yy[i], 10 * i);
}

}  // namespace
}  // namespace vort::testing
