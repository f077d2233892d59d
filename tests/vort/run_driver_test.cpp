#include "vort/run_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "csm/globals.h"
#include "ensemble/globals.h"
#include "numeric/random.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::kDataFile;
using vort::testing::kMarkerTable;
using vort::testing::read_file;
using vort::testing::Restored;
using vort::testing::ScreeningTest;
using vort::testing::status_zero;
using vort::testing::write_file;

constexpr int kIndividuals = 60;
constexpr int kMarkers = 6;

class RunDriver : public ScreeningTest {
  protected:
    RunDriver() { init_rand1(); }
    ~RunDriver() override { init_rand1(); }

    // The first column follows the phenotype, the others nothing.
    static void write_input(int permutations) {
        std::mt19937 random(3);
        std::string data;
        std::string table;
        for (int i = 0; i < kIndividuals; ++i) {
            const int phenotype = i % 2;
            data += std::to_string(phenotype) + ' ' + (i % 7 == 0 ? "1" : phenotype ? "2" : "0");
            for (int j = 1; j < kMarkers; ++j) data += ' ' + std::to_string(random() % 3);
            data += '\n';
        }
        for (int j = 1; j <= kMarkers; ++j) table += "2 rs" + std::to_string(j) + '\n';
        write_file(kDataFile, data);
        write_file(kMarkerTable, table);
        write_file("parameter.txt", "Inputfile dat1.txt\nHead 0\nRecorder_num 0\nSample_size " +
                                        std::to_string(kIndividuals) + "\nNumber_of_markers " +
                                        std::to_string(kMarkers) + "\nMax_retain 3\n" +
                                        "Number_of_permutation " + std::to_string(permutations) +
                                        "\nBest_m 5\nHow_many_imputation_to_deal_with_missing 2\n");
    }

    static std::string run() {
        const ConsoleCapture console;
        EXPECT_EQ(run_analysis(), 0);
        return console.text();
    }

  private:
    Restored<char*, int, int, int, int, int, std::vector<output_information>> ensemble_{
        hostname, ns, nm, missingrepeat, repeat, permutation, base_learner};
    Restored<int, int, int> builder_{clustermethod, clustermethod_print, test_method_print};
};

TEST_F(RunDriver, LeavesTheReportsAndNothingElse) {
    char elsewhere[] = "elsewhere/";
    hostname = elsewhere;
    write_input(2);
    write_file("beta.txt", "of an earlier run");
    write_file("output_X_Y.txt", "of an earlier run");
    const std::string console = run();
    EXPECT_THAT(console, HasSubstr("read data is finished\n"));
    const std::size_t last_line = console.rfind('\n', console.size() - 2) + 1;
    EXPECT_THAT(console.substr(last_line), MatchesRegex("Total time=[0-9]+\n"));
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        files.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(files, ::testing::UnorderedElementsAre(kDataFile, kMarkerTable, "parameter.txt",
                                                       "Final_result.txt", "P_value.txt"));
    EXPECT_EQ(X, nullptr);
    EXPECT_EQ(ns, kIndividuals);
    EXPECT_EQ(nm, 5);
    EXPECT_EQ(missingrepeat, 2);
    EXPECT_STREQ(hostname, "");
}

// The best marker is the first column, so the table line before its own is none.
TEST_F(RunDriver, SelectedMarkersAreNamedByTheLineBeforeTheirOwn) {
    write_input(2);
    run();
    const std::string report = read_file("Final_result.txt");
    EXPECT_THAT(report, ::testing::StartsWith("Inputfile")) << "what stood there stays";
    EXPECT_THAT(report, HasSubstr("\n\nMarker \t1\t name = \t Chromosome= 0"));
    EXPECT_THAT(report.substr(report.rfind("\n\nMarker")),
                MatchesRegex("\n\nMarker \t[0-9]+\t name = [^\n]*\t Chromosome= [02]"));
}

// Prepared files of one run serve the next: the same phenotypes, rankings and reports.
TEST_F(RunDriver, PreparedFilesGiveTheSameReports) {
    constexpr int kPermutations = 2;
    write_input(kPermutations);
    save_pre = 1;
    run();
    const std::string report = read_file("Final_result.txt");
    const std::string pvalue = read_file("P_value.txt");
    ASSERT_NE(pvalue, "");

    forget_all();
    init_rand1();
    save_pre = 0;
    direct_calculate = 0;
    std::filesystem::remove("P_value.txt");
    std::filesystem::remove("Final_result.txt");
    // The shuffles of the first run drew these numbers, one for each individual.
    for (int i = 0; i < kPermutations * kIndividuals; ++i) rand1();
    const std::string console = run();
    EXPECT_THAT(console, ::testing::Not(HasSubstr("time of pvalue")));
    EXPECT_EQ(read_file("Final_result.txt"), report);
    EXPECT_EQ(read_file("P_value.txt"), pvalue);
}

TEST_F(RunDriver, SizesThatCannotBeEndTheProgram) {
    const auto run_with = [](const std::string& line) {
        console_to_stderr();
        write_input(1);
        write_file("parameter.txt", read_file("parameter.txt") + line + '\n');
        run_analysis();
        std::exit(3);
    };
    EXPECT_EXIT(run_with("Sample_size 0"), status_zero(),
                "parameter.txt: Sample_size 0, Number_of_markers 6 and Number_of_permutation 1 "
                "cannot be analysed");
    EXPECT_EXIT(run_with("Sample_size -5"), status_zero(), "Sample_size -5, .*cannot be analysed");
    EXPECT_EXIT(run_with("Number_of_markers -1\nBest_m -1"), status_zero(),
                "Number_of_markers -1 .*cannot be analysed");
    EXPECT_EXIT(run_with("Number_of_permutation -1"), status_zero(),
                "Number_of_permutation -1 cannot be analysed");
    EXPECT_EXIT(run_with("Sample_size 2e9\nNumber_of_markers 2e9"), status_zero(),
                "markers .Number_of_markers. and 1 permutations .Number_of_permutation. would take "
                "4e\\+09 GB");
    EXPECT_EXIT(run_with("Inputfile absent.txt"), status_zero(),
                "file open absent.txt not good\n$");
}

TEST_F(RunDriver, AMissingMarkerTableEndsTheProgramBeforeTheTimeIsTold) {
    write_input(0);
    std::filesystem::remove(kMarkerTable);
    EXPECT_EXIT((console_to_stderr(), run_analysis()), status_zero(),
                "open file Chromosome_SNP_Name.txt [a-z ]+error\n$");
}

}  // namespace
}  // namespace vort
