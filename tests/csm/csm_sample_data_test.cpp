// Intake of a data set: imputation and its random stream, the two halves, centring; the run around
// it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;
using ::testing::Not;

using CsmSampleData = BuilderTest;

int read(CSM& csm, Study& study, int current) {
    return csm.ReadSampleData(current, 0, 0, study.x(), study.y(), study.rankings(), 0, 0,
                              csm.Tgen.data(), csm.yy.data(), csm.missing_set.data());
}

TEST_F(CsmSampleData, TakesTheRankedColumnsOfItsDataSet) {
    write_settings({3, 2});
    Study study({"0120", "2211", "1002"}, {0, 1, 0});
    study.add_data_set({1, 0, 0}, {3, 1, 0, 2});
    CSM csm(prefix_);
    ASSERT_EQ(read(csm, study, 1), 0);
    const int expected[3][2] = {{0, 1}, {1, 2}, {2, 0}};
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(csm.yy[i], i == 1 ? 1 : 0);
        for (int j = 1; j <= 2; ++j) EXPECT_EQ(csm.Tgen[i][j], expected[i - 1][j - 1]);
    }
    EXPECT_EQ(random_state(), (std::array<int, 3>{1, 3, 5})) << "nothing missing, nothing drawn";
    EXPECT_EQ(csm.quantitative_trait, 0);
}

// The first draws from seeds 1, 3, 5 are (171/30269 + 516/30309 + 850/30323) mod 1 and so on:
// 0.0507, 0.6596, 0.9607, 0.8330. Markers are walked before individuals.
TEST_F(CsmSampleData, ImputesByTheMarkersOwnFrequencies) {
    write_settings({6, 3});
    //     column 1: a third each, so 0.0507 is a 0, 0.6596 just a 1, and 0.9607 a 2.
    //     column 2: all 1, whatever is drawn.
    //     column 3: known nowhere; a draw is no share of nothing, so all are 2.
    Study study({"01-", "-1-", "21-", "-1-", "-1-", "11-"}, {0, 1, 0, 1, 1, 0});
    study.add_data_set({0, 1, 0, 1, 1, 0}, {1, 1, 1});
    CSM csm(prefix_);
    const ConsoleCapture console;
    ASSERT_EQ(read(csm, study, 0), 0);
    EXPECT_EQ(console.text(), "read data finished\n");
    const int first[] = {0, 0, 2, 1, 2, 1};
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(csm.Tgen[i][1], first[i - 1]) << i;
        EXPECT_EQ(csm.Tgen[i][3], 2);
        EXPECT_EQ(csm.missing_set[i]->GetAt(1) != 0, i == 2 || i == 4 || i == 5);
        EXPECT_EQ(csm.missing_set[i]->GetAt(2), 0);
        EXPECT_NE(csm.missing_set[i]->GetAt(3), 0);
    }
    const std::array<int, 3> after = random_state();
    ASSERT_EQ(read(csm, study, 1), 0);
    EXPECT_EQ(random_state(), after);
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(csm.missing_set[i]->SizeofSet(), 0) << "left over";
}

TEST_F(CsmSampleData, OtherPhenotypesMakeTheTraitQuantitative) {
    write_settings({3, 1});
    Study study({"0", "1", "2"}, {0, 2, -1});
    study.add_data_set({0, 1, 1}, {0});
    const ConsoleCapture console;
    CSM csm(prefix_);
    ASSERT_EQ(read(csm, study, 0), 0);
    EXPECT_THAT(console.text(), HasSubstr("\nyy[i]=2.000000\nyy[i]=-1.000000\nread data"));
    EXPECT_EQ(csm.quantitative_trait, 1);
    ASSERT_EQ(read(csm, study, 1), 0);
    EXPECT_EQ(csm.quantitative_trait, 1) << "permuted data sets are of the same trait";
}

TEST_F(CsmSampleData, CodeThatIsNoGenotypeIsRefused) {
    write_settings({2, 1});
    Study study({"0", "3"}, {0, 1});
    const ConsoleCapture console;
    CSM csm(prefix_);
    EXPECT_EQ(read(csm, study, 0), -1);
    EXPECT_THAT(console.text(), HasSubstr("Data XX or parameter file(=parameter.txt) have some "
                                          "wrong  read marker gene=3\n"));
    const auto run = [&] {
        console_on_standard_error();
        csm.run(0, 0, 0, study.x(), study.y(), study.rankings(), 0, 0);
    };
    EXPECT_EXIT(run(), ExitedWithCode(0), "marker gene=3\n$");
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
        {{1}, {1}},
        {{0, 1}, {1, 2}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.phenotype));
        const int n = static_cast<int>(c.phenotype.size());
        write_settings({n, 3});
        std::vector<std::string> rows;
        for (int i = 1; i <= n; ++i) {
            rows.push_back({static_cast<char>('0' + i / 9), static_cast<char>('0' + i / 3 % 3),
                            static_cast<char>('0' + i % 3)});
        }
        Study study(rows, c.phenotype);
        CSM csm(prefix_);
        read(csm, study, 0);
        const std::vector<bitset*> before = csm.missing_set;
        EXPECT_EQ(csm.init(csm.missing_set.data()),
                  std::count(c.phenotype.begin(), c.phenotype.end(), 1));
        for (int i = 1; i <= n; ++i) {
            const int* codes = csm.Tgen[i];
            const int id = 9 * codes[1] + 3 * codes[2] + codes[3];
            EXPECT_EQ(id, c.order[i - 1]) << "place " << i;
            EXPECT_EQ(csm.yy[i], c.phenotype[id - 1]);
            EXPECT_EQ(csm.missing_set[i], before[id]);
        }
    }
}

TEST_F(CsmSampleData, CentringAndItsVariance) {
    write_settings({4, 1});
    Study study({"0", "0", "0", "0"}, {1, 0, 0, 0});
    CSM csm(prefix_);
    read(csm, study, 0);
    const ConsoleCapture console;
    EXPECT_EQ(csm.calculate_sigma(), 0.1875);
    EXPECT_EQ(csm.sigma, 0.1875);
    EXPECT_EQ(console.text(), "mean=0.25\n");
    EXPECT_EQ(std::vector<double>(csm.yy.data() + 1, csm.yy.data() + 5),
              (std::vector<double>{0.75, -0.25, -0.25, -0.25}));
}

TEST_F(CsmSampleData, PermutingAndRestoring) {
    const int n = 12;
    write_settings({n, 1});
    CSM csm(prefix_);
    for (int i = 1; i <= n; ++i) csm.yy[i] = 10 * i;
    csm.bakeup(csm.yy.data(), 0);
    std::vector<int> order(n + 1);
    randomsort(n, order.data());
    init_rand1();
    std::string lines[3];
    for (int i = 1; i <= n; ++i) {
        if (i <= 9) lines[0] += std::to_string(order[i]) + " ";
        if (i <= 9) lines[1] += std::to_string(10 * order[i]) + " ";
        if (i > n - 9) lines[2] += std::to_string(10 * order[i]) + " ";
    }
    const ConsoleCapture console;
    csm.mempermutation();
    EXPECT_EQ(console.text(), lines[0] + "\n" + lines[1] + "\n" + lines[2] + "\n");
    for (int i = 1; i <= n; ++i) EXPECT_EQ(csm.yy[i], 10 * order[i]);
    csm.bakeup(csm.yy.data(), 1);
    for (int i = 1; i <= n; ++i) EXPECT_EQ(csm.yy[i], 10 * i);
}

TEST_F(CsmSampleData, RunShowsTheFirstTenAndKeepsTheRawCodes) {
    write_settings({3, 2, 1, 0, "0.000001"});
    Study study({"0120", "2211", "1-02"}, {0, 1, 1});
    study.add_data_set({0, 1, 1}, {3, 1, 0, 2});
    const ConsoleCapture console;
    CSM csm(prefix_);
    csm.permutation_mode = 1;
    EXPECT_EQ(csm.run(1, 0, 0, study.x(), study.y(), study.rankings(), 0, 0), 0.0);
    // Column 2 knows codes 1 and 2, and the draw 0.0507 is below the half of code 1. The cases
    // come to the front: individual 3 for 1.
    EXPECT_EQ(console.text(),
              "test_method=newCSM\nread data finished\nY=0 X=0 1 \nY=1 X=1 2 \nY=1 X=2 1 \n"
              "permutation\nmean=0.666667\nY=0.333333 X=2 1 \nY=0.333333 X=1 2 \n"
              "Y=-0.666667 X=0 1 \nCSM get len=0\nfirst step finish at calculating 1-item\n");
    EXPECT_EQ(csm.first_codes, (std::array<int, 10>{0, 1}));
    EXPECT_EQ(csm.last_codes, (std::array<int, 10>{1, -1}));
    EXPECT_EQ(csm.case_num, 2);
    EXPECT_EQ(read_file("output_X_Y.txt"), "0.333333 \n0.333333 \n-0.666667 \npara  3 0\n");
}

TEST_F(CsmSampleData, RunWithoutGenotypesOrWithoutIntake) {
    write_settings({1, 1});
    const ConsoleCapture console;
    CSM csm(prefix_);
    EXPECT_EQ(csm.run(0, 0, 0, nullptr, nullptr, nullptr, 0, 0), 0.0);
    EXPECT_EQ(console.text(), "test_method=newCSM\nDon't read data from XX\n");
    csm.skip_read = 1;
    csm.test_method = 5;
    csm.yy[1] = 3;
    csm.run(0, 0, 0, nullptr, nullptr, nullptr, 0, 0);
    EXPECT_THAT(console.text(), HasSubstr("XX\nY=3 X=0 \nbakeup\nmean=3\nY=0 X=0 \n"));
    EXPECT_THAT(console.text(), Not(HasSubstr("first step")));
    EXPECT_EQ(read_file("output_X_Y.txt"), "0.000000 \npara  1 0\n");
}

}  // namespace
}  // namespace vort::testing
