// The screening's names, and a whole run by the fixed names, as the program once made it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "legacy/default_objects.h"
#include "legacy/genotype_data.h"
#include "legacy/globals.h"
#include "legacy/parameter_readers.h"
#include "legacy/random.h"
#include "legacy/run_driver.h"
#include "legacy/screening.h"
#include "legacy/snp_index.h"
#include "support/console_capture.h"
#include "support/masked_seconds.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using ::testing::ElementsAre;

class Legacy : public ::testing::Test {
  protected:
    Legacy() {
        reset_default_objects();
        init_rand1();
        head = record = 0;
        clustermethod_print = test_method_print = 1;
    }
    ~Legacy() override { reset_default_objects(); }

  private:
    TemporaryFolder folder_;
};

TEST_F(Legacy, DataSetsAreCountedAndPrepared) {
    Sample = 6;
    Marker = 2;
    std::strcpy(inputfilename, "dat1.txt");
    write_file("dat1.txt", "1 0 2\n0 1 -1\n1 2 2\n0 0 0\n1 0 2\n0 0 1\n");
    const ConsoleCapture console;
    int ranking[2] = {-7, -7}, cases[4], controls[4];
    Datapath = "p-";
    Save_marker_length = 1;
    save_pre = 1;
    single_marker_test_five_model_drop_missing_diseasemarker1(ranking);
    save_pre = 0;
    EXPECT_THAT(ranking, ElementsAre(0, 1)) << "the other is dropped for a missing genotype";
    double pvalue[4];
    calculate_pvalue4_and_freq(Y, X, Marker, Sample, 1, pvalue, cases, controls);
    EXPECT_THAT(controls, ElementsAre(1, 1, 0, 1));
    EXPECT_NEAR(pvalue[3], std::exp(-5 / 2.0), 1e-6) << "groups apart: the statistic is 5";
    Y[0] = 0;
    ranking[0] = -7;
    const auto take = single_marker_test_five_model_drop_missing_diseasemarker_exist_prepare;
    EXPECT_EQ(take(ranking, 0), 0);
    EXPECT_TRUE(Y[0] == 1 && ranking[0] == 0 && ranking[1] == 1);
    expect_end([&] { take(ranking, 0); }, "prepare data file current num=1 but permut=0\n$");
}

TEST_F(Legacy, ReadersStoreWhatTheFileGives) {
    write_file("parameter.txt", "Sample_size 99.9\nBest_m 9\nInputfile f\n");
    int v[7] = {-7, 12, -7, -7, -7, -7, -7}, w[5] = {-7, -7, -7, -7, -7};
    char input[100] = "none";
    const auto read = [&] {
        ReadPara_gw_vort3(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], input);
    };
    read();
    EXPECT_THAT(v, ElementsAre(99, 12, -7, -7, -7, -7, 9));
    EXPECT_STREQ(input, "f");
    ReadPara(&w[0], &w[1], &w[2], &w[3], &w[4]);
    EXPECT_THAT(w, ElementsAre(99, 9, -7, -7, -7));
    v[1] = 8;
    expect_end(read, "find error for Best_m=9 and nmarker=8$");
}

template <typename T>
std::vector<T*> pointers(std::vector<std::vector<T>>& rows) {
    std::vector<T*> result;
    for (auto& row : rows) result.push_back(row.data());
    return result;
}

void append_names(const int* list, const std::vector<int>& ranking) {
    std::ofstream report("Final_result.txt", std::ios::app);
    for (int i = 0; list[i] > 0; ++i) {
        int chromosome = 0, locus = 0;
        const char* name = findSNPname(ranking[list[i] - 1], &chromosome, &locus);
        report << "\n\nMarker \t" << list[i] << "\t name = " << name
               << "\t Chromosome= " << chromosome;
    }
}

void run_by_hand() {
    ReadPara_gw_vort3(&Sample, &Marker, &Permutation, &missingrepeat1, &head, &record,
                      &Save_marker_length, inputfilename);
    const auto markers = static_cast<std::size_t>(Marker);
    std::vector<std::vector<int>> ranking(Permutation + 1, std::vector<int>(markers));
    std::vector<std::vector<short>> phenotype;
    for (int d = 0; d <= Permutation; ++d) {
        if (d > 0) permutation1(Y, Sample);
        orginal_data = d == 0 ? 1 : 0;
        single_marker_test_five_model_drop_missing_diseasemarker1(ranking[d].data());
        phenotype.emplace_back(Y, Y + Sample);
    }
    int count = 0;
    const std::unique_ptr<int[]> selected(main_vort3(Sample, Marker, X, pointers(phenotype).data(),
                                                     pointers(ranking).data(), Permutation,
                                                     Replication, &count));
    EXPECT_EQ(count, static_cast<int>(base_learner.size()));
    append_names(selected.get(), ranking[0]);
}

class LegacyRun : public Legacy, public ::testing::WithParamInterface<const char*> {};

TEST_P(LegacyRun, LeavesTheExpectedFiles) {
    const std::string golden = std::string(VORT_TEST_DATA "/golden/") + GetParam();
    for (const char* file : {"parameter.txt", "dat1.txt", "Chromosome_SNP_Name.txt"}) {
        std::filesystem::copy_file(golden + '/' + file, file);
    }
    std::string printed;
    {
        const ConsoleCapture console;
        run_by_hand();
        printed = console.text() + "Total time=T\n";
    }
    EXPECT_TRUE(with_masked_seconds(printed) == read_file(golden + "/expected/stdout.txt"));
    for (const char* report : {"P_value.txt", "Final_result.txt"}) {
        EXPECT_EQ(read_file(report), read_file(golden + "/expected/" + report));
    }
}

INSTANTIATE_TEST_SUITE_P(Golden, LegacyRun,
                         ::testing::Values("plain", "small", "missing", "quantitative",
                                           "no-model"));

}  // namespace
}  // namespace vort::testing
