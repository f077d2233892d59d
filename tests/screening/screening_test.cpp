#include "screening/screening.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "screening/fdr_report.h"
#include "screening/five_model_test.h"
#include "screening/plain_screening.h"
#include "support/console_capture.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/screening_fixture.h"

namespace vort {
namespace {

using vort::testing::console_to_stderr;
using vort::testing::ConsoleCapture;
using vort::testing::DiagnosticsCapture;
using vort::testing::kMarkerTable;
using vort::testing::PlainScreening;
using vort::testing::random_data_set;
using vort::testing::read_file;
using vort::testing::ScreeningTest;
using vort::testing::status_zero;
using vort::testing::write_file;

struct MarkerCounts {
    GenotypeCounts cases, controls;
};

// A file of 20 cases and 20 controls that has these counts.
std::string twenty_and_twenty(const std::vector<MarkerCounts>& markers) {
    static const char* const kCodes[4] = {" 0", " 1", " 2", " -1"};
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += i < 20 ? '1' : '0';
        for (const MarkerCounts& marker : markers) {
            int left = i % 20;
            int g = 0;
            const int* count = i < 20 ? marker.cases.count : marker.controls.count;
            while (left >= count[g]) left -= count[g++];
            text += kCodes[g];
        }
        text += '\n';
    }
    return text;
}

// One missing genotype in twenty may be; two are too many.
const std::vector<MarkerCounts> kMarkers = {
    {{{20, 0, 0, 0}}, {{20, 0, 0, 0}}},  // does not vary
    {{{4, 16, 0, 0}}, {{14, 6, 0, 0}}},  // carriers 0.8, 0.3
    {{{3, 17, 0, 0}}, {{14, 6, 0, 0}}},  // carriers 0.85, 0.3
    {{{0, 0, 18, 2}}, {{20, 0, 0, 0}}},  // dropped
    {{{10, 9, 0, 1}}, {{12, 7, 0, 1}}},  // nothing to see
    {{{4, 0, 16, 0}}, {{14, 0, 6, 0}}},  // alleles 0.8, 0.3
};

// Statistics of these tables, worked out by hand.
const double kCarriers3 = 20 * 0.3025 * (1 / 1.15 + 1 / 0.85);
const double kClasses2 = 0.0001 + 20 * 0.25 * (1 / 1.1 + 1 / 0.9);
const double kCarriers2 = kClasses2 - 0.0001;
const double kClasses3 = kCarriers3 + 0.0001;
const double kAlleles6 = 0.25 * (36 + 1 / 0.0225);
const double kClasses5 = 0.0001 + 4 * (1 / 16.0 + 1 / 22.0);

std::string p_of(double statistic) {
    std::ostringstream text;
    text << 1 - pchisq(1, statistic);
    return text.str();
}

std::string without_seconds(std::string text) {
    EXPECT_TRUE(text.starts_with("time of pvalue ")) << text;
    return text.erase(0, text.find('\n') + 1);
}

class Screening : public ScreeningTest {
  protected:
    void load_markers(const std::vector<MarkerCounts>& markers) {
        const ConsoleCapture console;
        set_sizes(40, static_cast<int>(markers.size()));
        load(twenty_and_twenty(markers));
    }

    // Returns the console text.
    std::string screen() {
        ranking_.assign(Marker, -7);
        const ConsoleCapture console;
        EXPECT_EQ(single_marker_test_five_model_drop_missing_diseasemarker1(ranking_.data()), 0);
        return console.text();
    }

    std::vector<int> ranking_;
};

TEST_F(Screening, ConsoleLines) {
    load_markers(kMarkers);
    std::ostringstream expected;
    expected << "model=additive  i=6 pvalue=" << p_of(kAlleles6)
             << "\nmodel=dominant  i=2 pvalue=" << p_of(kCarriers2)
             << "\nmodel=dominant  i=3 pvalue=" << p_of(kCarriers3)
             << "\nmodel=dominant  i=6 pvalue=" << p_of(kCarriers2)
             << "\nmodel=recessive i=6 pvalue=" << p_of(kCarriers2)
             << "\nmodel=genotype  i=2 pvalue=" << p_of(kClasses2)
             << "\nmodel=genotype  i=3 pvalue=" << p_of(kClasses3)
             << "\nmodel=genotype  i=6 pvalue=" << p_of(kClasses2)
             << "\nmodel=minimum   i=3 pvalue=" << p_of(kClasses3)
             << "\nmodel=minimum   i=6 pvalue=" << p_of(kAlleles6) << R"(
model=additive  # of marker's pvalue<0.002=1
model=dominant  # of marker's pvalue<0.002=3
model=recessive # of marker's pvalue<0.002=1
model=genotype  # of marker's pvalue<0.002=3
model=minimum   # of marker's pvalue<0.002/4=2
model=additive  # of marker's missing num than 20=1 total_count_drop_diseasemaker=1
model=dominant  # of marker's missing num than 20=1 total_count_drop_diseasemaker=1
model=recessive # of marker's missing num than 20=1 total_count_drop_diseasemaker=1
model=genotype  # of marker's missing num than 20=1 total_count_drop_diseasemaker=1
1 index=6 pvalue=)"
             << p_of(kAlleles6) << " ref=5\n2 index=3 pvalue=" << p_of(kClasses3)
             << " ref=2\n3 index=2 pvalue=" << p_of(kClasses2)
             << " ref=1\n4 index=5 pvalue=" << p_of(kClasses5)
             << " ref=4\n5 index=1 pvalue=" << p_of(0.0001) << " ref=0\n6 index=4 pvalue=1 ref=3\n";
    EXPECT_EQ(without_seconds(screen()), expected.str());
    EXPECT_EQ(ranking_, (std::vector<int>{5, 2, 1, 4, 0, 3}));
}

// Only the group that misses too many decides, and it may be either.
TEST_F(Screening, MissingLimitsAreThoseOfEachGroup) {
    const struct {
        int cases_missing, controls_missing;
        double ratio;
        int dropped;
    } rows[] = {
        {1, 1, 0.05, 0},  {2, 0, 0.05, 1}, {0, 2, 0.05, 1},
        {1, 0, 0.049, 1}, {0, 0, 0.0, 0},  {20, 20, 1.0, 0},
    };
    for (const auto& row : rows) {
        not_over_missing_marker_drop_ratio = row.ratio;
        load_markers({{{{0, 0, 20 - row.cases_missing, row.cases_missing}},
                       {{20 - row.controls_missing, 0, 0, row.controls_missing}}}});
        const std::string text = screen();
        const std::string shown = "total_count_drop_diseasemaker=" + std::to_string(row.dropped);
        EXPECT_NE(text.find(shown + '\n'), std::string::npos)
            << row.cases_missing << ' ' << row.controls_missing << '\n'
            << text;
    }
}

// Permuted phenotypes meet the limits of the data set as loaded.
TEST_F(Screening, AgreesWithThePlainForm) {
    for (unsigned seed = 1; seed <= 80; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        set_sizes(static_cast<int>(2 + random() % 300), static_cast<int>(random() % 150));
        {
            const ConsoleCapture console;
            const DiagnosticsCapture diagnostics;
            load(random_data_set(random));
        }
        for (int data_set = 0; data_set < 3; ++data_set) {
            const PlainScreening plain;
            ASSERT_EQ(without_seconds(screen()), plain.console());
            ASSERT_EQ(ranking_, plain.ranking());
            std::shuffle(Y, Y + Sample, random);
        }
    }
}

TEST(FalseDiscoveryCount, IsTheLastRankUnderTheLine) {
    const vort::testing::Restored restored(Marker);
    const struct {
        std::vector<double> pvalue;  // at level 0.05
        double divisor;
        int expected;
    } rows[] = {
        {{}, 1, 0},
        {{0.05}, 1, 1},
        {{0.0500001}, 1, 0},
        {{0.05}, 4, 0},
        {{0.0125}, 4, 1},
        {{0.9, 0.03, 0.9, 0.049}, 1, 0},
        {{0.9, 0.024, 0.9, 0.025}, 1, 2},  // the first rank alone is above the line
        {{0.9, 0.024, 0.9, 0.025}, 4, 0},
        {{0.05, 0.05, 0.05, 0.05}, 1, 4},
        {{0.051, 0.0125, 0.9, 0.026}, 1, 1},
    };
    for (const auto& row : rows) {
        Marker = static_cast<int>(row.pvalue.size());
        std::vector<double> from_one = {0.0};
        from_one.insert(from_one.end(), row.pvalue.begin(), row.pvalue.end());
        std::vector<int> order(from_one.size());
        Quickindex(from_one.data(), order.data(), Marker);
        EXPECT_EQ(false_discovery_count(from_one, order, 0.05, row.divisor), row.expected)
            << ::testing::PrintToString(row.pvalue);
    }
}

class FdrReports : public Screening {
  protected:
    void SetUp() override {
        write_FDR_result = 1;
        write_file(kMarkerTable, "1 rs1 1 rs2 3 rs3 3 rs4 3 rs5 3 rs6");
    }
};

// Lists per model number their loci from 0, the last list from 1.
TEST_F(FdrReports, FindingsAreListed) {
    load_markers(kMarkers);
    const std::string text = screen();
    const std::string report = read_file("FDR_results.txt");
    EXPECT_TRUE(text.ends_with(" ref=3\n" + report)) << text;
    std::ostringstream additive;
    additive << "model=additive  # of satisfy FDR marker, i. e.  len=3\n"
             << "FDR find Marker=6\t name = rs6\t locus=5\t pvalue=" << p_of(kAlleles6)
             << " corresponding  model=additive \n"
             << "FDR find Marker=3\t name = rs3\t locus=2\t pvalue="
             << p_of(0.075625 * (69 + 1 / 0.035625)) << " corresponding  model=additive \n"
             << "FDR find Marker=2\t name = rs2\t locus=1\t pvalue="
             << p_of(0.0625 * (72 + 1 / 0.03625)) << " corresponding  model=additive \n"
             << "model=dominant  # of satisfy FDR marker, i. e.  len=3\n";
    EXPECT_TRUE(report.starts_with(additive.str())) << report;
    EXPECT_NE(report.find("model=recessive # of satisfy FDR marker, i. e.  len=1\n"
                          "FDR find Marker=6\t name = rs6\t locus=5\t pvalue=" +
                          p_of(kCarriers2) +
                          " corresponding  model=recessive\n"
                          "model=genotype  # of satisfy FDR marker, i. e.  len=3\n"),
              std::string::npos)
        << report;
    std::ostringstream minimum;
    minimum << "model=minimum   # of satisfy FDR marker, i. e.  len=3\n"
            << "FDR find Marker=6\t name = rs6\t locus=4\t pvalue=" << p_of(kAlleles6)
            << " corresponding  model=additive \n"
            << "FDR find Marker=3\t name = rs3\t locus=1\t pvalue=" << p_of(kClasses3)
            << " corresponding  model=genotype \n"
            << "FDR find Marker=2\t name = rs2\t locus=2\t pvalue=" << p_of(kClasses2)
            << " corresponding  model=genotype \n";
    EXPECT_TRUE(report.ends_with(minimum.str())) << report;
}

TEST_F(FdrReports, WithoutFindingsTheFirstFiftyAreListed) {
    for (const int markers : {3, 50, 60}) {
        load_markers(std::vector<MarkerCounts>(markers, kMarkers[0]));
        screen();
        const std::string report = read_file("FDR_results.txt");
        EXPECT_EQ(report.find("FDR find"), std::string::npos);
        const int listed = std::min(markers, 50);
        EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 5 * (listed + 1)) << markers;
        EXPECT_TRUE(
            report.starts_with("model=additive  # of satisfy FDR marker, i. e.  len=0\n"
                               "FDR reject Marker="))
            << report;
        // Three models tie; the first gives the minimum.
        EXPECT_TRUE(report.ends_with(" corresponding  model=additive \n")) << report;
    }
}

// Carriers 0.6, 0.25: p = 0.025 is found under one model, but not under the best of four.
TEST_F(FdrReports, TheMinimumPaysForFourModels) {
    load_markers({{{{8, 12, 0, 0}}, {{15, 5, 0, 0}}}});
    screen();
    const std::string report = read_file("FDR_results.txt");
    EXPECT_NE(report.find("model=genotype  # of satisfy FDR marker, i. e.  len=1\nFDR find "),
              std::string::npos);
    EXPECT_NE(report.find("model=minimum   # of satisfy FDR marker, i. e.  len=0\nFDR reject "),
              std::string::npos);
}

TEST_F(FdrReports, AreMadeForObservedDataOnly) {
    load_markers(kMarkers);
    orginal_data = 0;
    EXPECT_TRUE(screen().ends_with(" ref=3\n"));
    orginal_data = 1;
    write_FDR_result = 0;
    EXPECT_TRUE(screen().ends_with(" ref=3\n"));
    EXPECT_FALSE(std::filesystem::exists("FDR_results.txt"));
}

TEST_F(FdrReports, AFileThatCannotBeOpenedEndsTheProgram) {
    load_markers(kMarkers);
    std::filesystem::create_directory("FDR_results.txt");
    const auto end = [this] {
        console_to_stderr();
        ranking_.assign(Marker, 0);
        single_marker_test_five_model_drop_missing_diseasemarker1(ranking_.data());
    };
    EXPECT_EXIT(end(), status_zero(), "\nfind error to open FDR_results.txt\n$");
}

}  // namespace
}  // namespace vort
