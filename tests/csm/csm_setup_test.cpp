// Settings of the builder.
#include "support/builder_study.h"

namespace vort::testing {
namespace {

using CsmSetup = BuilderTest;

TEST_F(CsmSetup, WithoutAParameterFileTheDefaultsStay) {
    const ConsoleCapture console;
    const CSM csm(no_prefix);
    EXPECT_EQ(console.text(), "Don't find parameter file use default value\ntest_method=newCSM\n");
    EXPECT_EQ(csm.Sample_size, 400);
    EXPECT_EQ(csm.marker_num, 20);
    EXPECT_EQ(csm.Max_retain, 1);
    EXPECT_EQ(csm.FDR_cutoff, 0.75);
    EXPECT_EQ(csm.alpha, 0.05);
    EXPECT_EQ(csm.case_num, 200);
    const ConsoleCapture second;
    const CSM written(no_prefix);
    EXPECT_EQ(second.text(), "") << "the strategy is named once a process";
    EXPECT_EQ(written.Sample_size, 1033) << "a second builder reads what the first has written";
}

TEST_F(CsmSetup, KeysAndTheirEffects) {
    const struct {
        const char* text;
        int CSM::*number;
        int expected;
    } numbers[] = {
        {"Sample_size 59.5", &CSM::Sample_size, 60},
        {"Max_retain -2.5", &CSM::Max_retain, -3},
        {"Best_m 12", &CSM::marker_num, 12},
        {"Best_m 12", &CSM::Best_m, 12},
        {"Best_m 1", &CSM::max_order, 2},
        {"Best_m 0.4", &CSM::max_order, 1},
        {"Best_m -4", &CSM::marker_num, -4},
        {"Number_of_markers 9", &CSM::marker_num, 20},
        {"Number_of_permutation 7", &CSM::Number_of_permutation, 7},
        {"Pr 5", &CSM::csm_replicate, 1},
    };
    for (const auto& c : numbers) {
        write_file("parameter.txt", c.text);
        EXPECT_EQ(CSM(no_prefix).*c.number, c.expected) << c.text;
    }
    const std::pair<const char*, double> cutoffs[] = {{"0.25", 0.25}, {"1", 1},     {"1.01", 0.75},
                                                      {"0", 0.75},    {"-1", 0.75}, {"0.3", 0.3F}};
    for (const auto& [text, expected] : cutoffs) {
        write_file("parameter.txt", std::string("FDR_cutoff ") + text);
        EXPECT_EQ(CSM(no_prefix).FDR_cutoff, expected) << text;
    }
    write_file("parameter.txt", "Inputfile " + std::string(120, 'a') + "\nColour 2.5\nqq 1\n");
    const ConsoleCapture console;
    const CSM csm(no_prefix);
    EXPECT_EQ(std::string(csm.Inputfile), std::string(99, 'a'));
    EXPECT_EQ(csm.How_many_imputation_to_deal_with_missing, 3) << "'o' in second place";
    EXPECT_THAT(console.text(), ::testing::HasSubstr("parametername=qq parametervalue=1.000000 "));
}

TEST_F(CsmSetup, SizesThatNoMemoryHoldsAreRefused) {
    for (const Settings& sizes : {Settings{2000000000, 2000000000}, {400, 2000000000}}) {
        expect_end([&] { builder_of(sizes); }, "Best_m");
    }
}

}  // namespace
}  // namespace vort::testing
