// What a screening prints and ranks, and the reports of findings, from counts worked out by hand.
#include "screening/screening.h"

#include <algorithm>
#include <sstream>

#include "numeric/distributions.h"
#include "numeric/index_sort.h"
#include "screening/fdr_report.h"
#include "screening/five_model_test.h"
#include "support/screening_fixture.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

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

std::string p_of(double statistic) {
    std::ostringstream text;
    text << 1 - pchisq(1, statistic);
    return text.str();
}

// P-values of these tables, their statistics worked out by hand.
const std::string kCarriers2 = p_of(20 * 0.25 * (1 / 1.1 + 1 / 0.9));
const std::string kClasses2 = p_of(0.0001 + 20 * 0.25 * (1 / 1.1 + 1 / 0.9));
const std::string kClasses3 = p_of(0.0001 + 20 * 0.3025 * (1 / 1.15 + 1 / 0.85));
const std::string kAlleles2 = p_of(0.0625 * (72 + 1 / 0.03625));
const std::string kAlleles3 = p_of(0.075625 * (69 + 1 / 0.035625));
const std::string kAlleles6 = p_of(0.25 * (36 + 1 / 0.0225));

class Screening : public ScreeningTest {
  protected:
    static void load_markers(const std::vector<MarkerCounts>& markers) {
        set_sizes(40, static_cast<int>(markers.size()));
        load_quietly(twenty_and_twenty(markers));
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

// Only the group that misses too many decides, and it may be either.
TEST_F(Screening, MissingLimitsAreThoseOfEachGroup) {
    const struct {
        int a, b;  // missing in cases, in controls
        double ratio;
        int dropped;
    } rows[] = {
        {1, 1, 0.05, 0},  {2, 0, 0.05, 1}, {0, 2, 0.05, 1},
        {1, 0, 0.049, 1}, {0, 0, 0.0, 0},  {20, 20, 1.0, 0},
    };
    for (const auto& [a, b, ratio, dropped] : rows) {
        not_over_missing_marker_drop_ratio = ratio;
        load_markers({{{{0, 0, 20 - a, a}}, {{20 - b, 0, 0, b}}}});
        EXPECT_THAT(screen(), HasSubstr("_diseasemaker=" + std::to_string(dropped) + "\n"));
    }
}

TEST(FalseDiscoveryCount, IsTheLastRankUnderTheLine) {
    const Restored restored(Marker);
    const struct {
        std::vector<double> pvalue;  // at level 0.05
        double divisor;
        int expected;
    } rows[] = {
        {{}, 1, 0},
        {{0.05}, 1, 1},
        {{0.0500001}, 1, 0},
        {{0.0125}, 4, 1},
        {{0.0126}, 4, 0},
        {{0.9, 0.03, 0.9, 0.049}, 1, 0},
        {{0.9, 0.024, 0.9, 0.025}, 1, 2},  // the first rank alone is above the line
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

std::string found(int marker, int locus, const std::string& p, const char* model) {
    const std::string m = std::to_string(marker);
    return "FDR find Marker=" + m + "\t name = rs" + m + "\t locus=" + std::to_string(locus) +
           "\t pvalue=" + p + " corresponding  model=" + model + "\n";
}

// Lists per model number their loci from 0, the last list from 1.
TEST_F(FdrReports, FindingsAreListed) {
    load_markers(kMarkers);
    const std::string text = screen();
    const std::string report = read_file("FDR_results.txt");
    EXPECT_THAT(text, EndsWith(" ref=3\n" + report));
    EXPECT_THAT(report, StartsWith("model=additive  # of satisfy FDR marker, i. e.  len=3\n" +
                                   found(6, 5, kAlleles6, "additive ") +
                                   found(3, 2, kAlleles3, "additive ") +
                                   found(2, 1, kAlleles2, "additive ") +
                                   "model=dominant  # of satisfy FDR marker, i. e.  len=3\n"));
    EXPECT_THAT(report, HasSubstr("model=recessive # of satisfy FDR marker, i. e.  len=1\n" +
                                  found(6, 5, kCarriers2, "recessive") +
                                  "model=genotype  # of satisfy FDR marker, i. e.  len=3\n"));
    EXPECT_THAT(report,
                EndsWith("model=minimum   # of satisfy FDR marker, i. e.  len=3\n" +
                         found(6, 4, kAlleles6, "additive ") + found(3, 1, kClasses3, "genotype ") +
                         found(2, 2, kClasses2, "genotype ")));
    std::filesystem::remove("FDR_results.txt");
    orginal_data = 0;  // permuted
    EXPECT_THAT(screen(), EndsWith(" ref=3\n"));
    orginal_data = 1;
    write_FDR_result = 0;
    EXPECT_THAT(screen(), EndsWith(" ref=3\n"));
    EXPECT_FALSE(std::filesystem::exists("FDR_results.txt"));
}

TEST_F(FdrReports, WithoutFindingsTheFirstFiftyAreListed) {
    for (const int markers : {3, 50, 60}) {
        load_markers(std::vector<MarkerCounts>(markers, kMarkers[0]));
        screen();
        const std::string report = read_file("FDR_results.txt");
        EXPECT_THAT(report, Not(HasSubstr("FDR find")));
        EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 5 * (std::min(markers, 50) + 1));
        EXPECT_THAT(report, StartsWith("model=additive  # of satisfy FDR marker, i. e.  len=0\n"
                                       "FDR reject Marker="));
        // Three models tie; the first gives the minimum.
        EXPECT_THAT(report, EndsWith(" corresponding  model=additive \n"));
    }
    // Carriers 0.6, 0.25: p = 0.025 is found under one model, but not under the best of four.
    load_markers({{{{8, 12, 0, 0}}, {{15, 5, 0, 0}}}});
    screen();
    const std::string report = read_file("FDR_results.txt");
    EXPECT_THAT(report,
                HasSubstr("model=genotype  # of satisfy FDR marker, i. e.  len=1\nFDR find "));
    EXPECT_THAT(report,
                HasSubstr("model=minimum   # of satisfy FDR marker, i. e.  len=0\nFDR reje"));
    std::filesystem::remove("FDR_results.txt");
    std::filesystem::create_directory("FDR_results.txt");
    expect_end([this] { single_marker_test_five_model_drop_missing_diseasemarker1(&ranking_[0]); },
               "\nfind error to open FDR_results.txt\n$");
}

}  // namespace
}  // namespace vort::testing
