#include "vort/run_driver.h"

#include <random>

#include "csm/globals.h"
#include "ensemble/globals.h"
#include "numeric/random.h"
#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

constexpr int kIndividuals = 60;

class RunDriver : public ScreeningTest {
  protected:
    RunDriver() { init_rand1(); }
    ~RunDriver() override { init_rand1(); }

    // The first of six columns follows the phenotype, the others nothing.
    static void write_input(int permutations, const std::string& more = "") {
        std::mt19937 random(3);
        std::string data;
        for (int i = 0; i < kIndividuals; ++i) {
            const int phenotype = i % 2;
            data += std::to_string(phenotype) + ' ' + (i % 7 == 0 ? "1" : phenotype ? "2" : "0");
            for (int j = 1; j < 6; ++j) data += ' ' + std::to_string(random() % 3);
            data += '\n';
        }
        write_file(kDataFile, data);
        write_file(kMarkerTable, "2 rs1\n2 rs2\n2 rs3\n2 rs4\n2 rs5\n2 rs6\n");
        write_file("parameter.txt",
                   "Inputfile dat1.txt\nHead 0\nRecorder_num 0\nSample_size 60\n"
                   "Number_of_markers 6\nMax_retain 3\nBest_m 5\nNumber_of_permutation " +
                       std::to_string(permutations) +
                       "\nHow_many_imputation_to_deal_with_missing 2\n" + more);
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
    // The best marker is the first column, so the table line before its own is none.
    const std::string report = read_file("Final_result.txt");
    EXPECT_THAT(report, ::testing::StartsWith("Inputfile")) << "what stood there stays";
    EXPECT_THAT(report, HasSubstr("\n\nMarker \t1\t name = \t Chromosome= 0"));
    EXPECT_THAT(report.substr(report.rfind("\n\nMarker")),
                MatchesRegex("\n\nMarker \t[0-9]+\t name = [^\n]*\t Chromosome= [02]"));
}

// Prepared files of one run serve the next: the same phenotypes, rankings and reports.
TEST_F(RunDriver, PreparedFilesGiveTheSameReports) {
    write_input(2);
    save_pre = 1;
    run();
    const std::string report = read_file("Final_result.txt");
    const std::string pvalue = read_file("P_value.txt");
    ASSERT_NE(pvalue, "");

    forget_all();
    init_rand1();
    save_pre = direct_calculate = 0;
    std::filesystem::remove("P_value.txt");
    std::filesystem::remove("Final_result.txt");
    // The shuffles of the first run drew these numbers, one for each individual.
    for (int i = 0; i < 2 * kIndividuals; ++i) rand1();
    EXPECT_THAT(run(), ::testing::Not(HasSubstr("time of pvalue")));
    EXPECT_EQ(read_file("Final_result.txt"), report);
    EXPECT_EQ(read_file("P_value.txt"), pvalue);
}

TEST_F(RunDriver, EndsOfTheProgram) {
    const std::pair<const char*, const char*> rows[] = {
        {"Sample_size 0",
         "parameter.txt: Sample_size 0, Number_of_markers 6 and Number_of_permutation 1 cannot be "
         "analysed"},
        {"Sample_size -5", "Sample_size -5, .*cannot be analysed"},
        {"Number_of_markers -1\nBest_m -1", "Number_of_markers -1 .*cannot be analysed"},
        {"Number_of_permutation -1", "Number_of_permutation -1 cannot be analysed"},
        {"Sample_size 2e9\nNumber_of_markers 2e9",
         "markers .Number_of_markers. and 1 permutations .Number_of_permutation. would take "
         "4e\\+09 GB"},
        {"Inputfile absent.txt", "file open absent.txt not good\n$"},
    };
    for (const auto& [line, message] : rows) {
        write_input(1, std::string(line) + '\n');
        expect_end(run_analysis, message);
    }
    write_input(0);
    std::filesystem::remove(kMarkerTable);
    expect_end(run_analysis, "open file Chromosome_SNP_Name.txt [a-z ]+error\n$");
}

}  // namespace
}  // namespace vort::testing
