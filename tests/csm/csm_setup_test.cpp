// Settings of the builder, and its tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

using CsmSetup = BuilderTest;

TEST_F(CsmSetup, WithoutAParameterFileTheDefaultsStay) {
    const ConsoleCapture console;
    const CSM csm(prefix_);
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\ntest_method=newCSM\n");
    EXPECT_TRUE(std::filesystem::exists("parameter.txt"));
    EXPECT_EQ(csm.Sample_size, 400);
    EXPECT_EQ(csm.marker_num, 20);
    EXPECT_EQ(csm.Best_m, 20);
    EXPECT_EQ(csm.max_order, 2);
    EXPECT_EQ(csm.Max_retain, 1);
    EXPECT_EQ(csm.Number_of_permutation, 0);
    EXPECT_EQ(csm.FDR_cutoff, 0.75);
    EXPECT_EQ(csm.alpha, 0.05);
    EXPECT_EQ(csm.csm_replicate, 1);
    EXPECT_EQ(csm.ntru, 2);
    EXPECT_EQ(csm.case_num, 200);
    const ConsoleCapture second;
    const CSM written(prefix_);
    EXPECT_EQ(second.text(), "") << "the strategy is named once a process";
    EXPECT_EQ(written.Sample_size, 1033) << "a second builder reads what the first has written";
}

TEST_F(CsmSetup, KeysAndTheirEffects) {
    const struct {
        const char* text;
        double CSM::*share;
        int CSM::*number;
        double expected;
    } cases[] = {
        {"Sample_size 59.5", nullptr, &CSM::Sample_size, 60},
        {"Sample_size 59.4", nullptr, &CSM::Sample_size, 59},
        {"Sam 7", nullptr, &CSM::Sample_size, 7},
        {"Max_retain 2.5", nullptr, &CSM::Max_retain, 3},
        {"Max_retain -2.5", nullptr, &CSM::Max_retain, -3},
        {"Mab 9", nullptr, &CSM::Max_retain, 1},
        {"Best_m 12", nullptr, &CSM::marker_num, 12},
        {"Best_m 12", nullptr, &CSM::Best_m, 12},
        {"Best_m 1", nullptr, &CSM::max_order, 2},
        {"Best_m 0.4", nullptr, &CSM::max_order, 1},
        {"Best_m -4", nullptr, &CSM::marker_num, -4},
        {"Number_of_markers 9", nullptr, &CSM::marker_num, 20},
        {"Number_of_permutation 7", nullptr, &CSM::Number_of_permutation, 7},
        {"Head 0", nullptr, &CSM::Head, 0},
        {"Recorder_num 1", nullptr, &CSM::Recorder_num, 1},
        {"How_many 11", nullptr, &CSM::How_many_imputation_to_deal_with_missing, 11},
        {"Replicate 5", nullptr, &CSM::Recorder_num, 0},
        {"Pr 5", nullptr, &CSM::csm_replicate, 1},
        {"FDR_cutoff 0.25", &CSM::FDR_cutoff, nullptr, 0.25},
        {"FDR_cutoff 1", &CSM::FDR_cutoff, nullptr, 1},
        {"FDR_cutoff 1.01", &CSM::FDR_cutoff, nullptr, 0.75},
        {"FDR_cutoff 0", &CSM::FDR_cutoff, nullptr, 0.75},
        {"FDR_cutoff -1", &CSM::FDR_cutoff, nullptr, 0.75},
        {"FDR_cutoff 0.3", &CSM::FDR_cutoff, nullptr, static_cast<double>(0.3F)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        write_file("parameter.txt", c.text);
        const CSM csm(prefix_);
        EXPECT_EQ(c.share != nullptr ? csm.*c.share : csm.*c.number, c.expected);
    }
}

TEST_F(CsmSetup, TextsAreKeptAndCut) {
    write_file("parameter.txt",
               "Inputfile " + std::string(120, 'a') + "\nSymbol_of_missing_Gentype -1\n");
    const CSM csm(prefix_);
    EXPECT_EQ(std::string(csm.Inputfile), std::string(99, 'a'));
    EXPECT_EQ(std::string(csm.Symbol_of_missing_Gentype), "-1");
}

TEST_F(CsmSetup, NeedlessKeyIsSaidAndPassedOver) {
    write_file("parameter.txt", "Sample_size 5\nColour 2.5\nBest_m 3\nqq 1\n");
    const ConsoleCapture console;
    const CSM csm(prefix_);
    EXPECT_THAT(console.text(), HasSubstr("Find error,needless parameter! parametername=qq "
                                          "parametervalue=1.000000 k=4\n"));
    EXPECT_EQ(csm.How_many_imputation_to_deal_with_missing, 3) << "'o' in second place";
    EXPECT_EQ(csm.marker_num, 3);
}

TEST_F(CsmSetup, SizesThatNoMemoryHoldsAreRefused) {
    for (const char* text :
         {"Sample_size 2000000000\nBest_m 2000000000\n", "Best_m 2000000000\n"}) {
        write_file("parameter.txt", text);
        EXPECT_EXIT(CSM{prefix_}, ExitedWithCode(0), "Best_m");
    }
}

TEST_F(CsmSetup, BinomialCoefficients) {
    write_settings({2, 6});
    CSM csm(prefix_);
    // A lower number above the upper gives 1, not 0; the tables rely on it.
    const int cases[][3] = {{4, 2, 6},  {5, 7, 1},    {0, 0, 1},    {0, 2, 1},
                            {1, 2, 1},  {10, 3, 120}, {10, 7, 120}, {52, 5, 2598960},
                            {3, -1, 1}, {100, 1, 100}};
    for (const auto& [i, j, expected] : cases)
        EXPECT_EQ(csm.choose(i, j), expected) << i << ' ' << j;
    Study study({"012012", "000000"}, {0, 1});
    take_in(csm, study);
    EXPECT_EQ(csm.data_ready, 1);
    const int rows[7][3] = {{1, 1, 1}, {1, 1, 1},  {1, 2, 1}, {1, 3, 3},
                            {1, 4, 6}, {1, 5, 10}, {1, 6, 15}};
    for (int i = 0; i <= 6; ++i) {
        EXPECT_TRUE(std::equal(rows[i], rows[i] + 3, csm.choose_table[i])) << "row " << i;
    }
}

}  // namespace
}  // namespace vort::testing
