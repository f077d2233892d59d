// The main report, every row of it worked by hand.
#include "ensemble/final_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/random_study.h"

namespace vort::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

BaseLearner learner(int id, std::vector<int> markers, std::vector<int> cells, double beta,
                    double importance, std::vector<int> cluster) {
    BaseLearner one;
    one.id = id;
    one.markers = static_cast<int>(markers.size());
    std::copy(markers.begin(), markers.end(), one.marker.begin());
    one.cells = std::move(cells);
    one.beta = beta;
    one.importance = importance;
    std::copy(cluster.begin(), cluster.end(), one.cluster.begin());
    return one;
}

struct Reported {
    std::string text;
    std::string console;
};

// Four cases, four controls. By rank: marker 1 has 3 and 1 cases among four each of genotypes
// 0 and 1; marker 2 as many cases as controls in genotypes 0 and 1; marker 3 does not vary.
Reported report(std::vector<BaseLearner> learners, int ranked, std::vector<int> markers,
                std::vector<int> importance) {
    const Columns columns = {{0, 0, -1, 1, 0, 0, -1, 1},
                             {0, 0, 0, 1, 0, 1, 1, 1},
                             {1, 1, 1, 1, 1, 1, 1, 1},
                             {2, 2, 2, 2, 2, 2, 2, 2}};
    const std::vector<short> phenotypes = {1, 1, 1, 1, 0, 0, 0, 0};
    const Genotypes genotypes = packed(8, columns);
    Settings settings;
    settings.file.text = "\n \nA 1\n";
    settings.report.individuals = settings.builder.individuals = 8;
    settings.report.markers = settings.builder.markers = ranked;
    Result result;
    result.learners = std::move(learners);
    result.markers = std::move(markers);
    result.importance = std::move(importance);
    result.columns = {1, 0, 3};
    Transcript console(true);
    std::string text = report_text({settings, genotypes, phenotypes}, result, console);
    return {std::move(text), std::string(console.text())};
}

// z is 0.25 / sqrt(4 * 2/64 / 4) = sqrt 2 for marker 1; for the pair's 0/0, 2 of 3, it is
// (1/6) / sqrt(5 * 2/64 / 3) = sqrt(8/15), for its 1/0, none of one, -0.5 / sqrt(14/64). Tails:
// erfc(z / sqrt 2).
TEST(FinalReport, EverySection) {
    const std::vector<int> nine = {0, 1, 0, 1, 0, 0, 0, 0, 3};
    std::vector<BaseLearner> learners = {
        learner(1, {1}, {0}, 0.5, 3, {0, 1, 2}),     learner(2, {1}, {1, 2}, -0.25, 1, {0, 1, 2}),
        learner(3, {2}, {}, 1, 2, {0, 0, 0}),        learner(4, {1, 2}, {}, 0.125, 2, nine),
        learner(5, {1, 2}, {3, 8}, 0.0625, 1, nine), learner(6, {1}, {0, 1, 2}, -10, 1, {}),
        learner(7, {2}, {1}, 1000.5, 0, {1, 2, 1})};
    learners[0].average = 0.75;
    const auto [text, console] = report(learners, 3, {2, 1}, {2, 1});
    EXPECT_THAT(text, StartsWith("A 1\n\nThe first ten marker of first individual 0 0 1 \n"
                                 "The first ten marker of last  individual 1 1 1 \n\n"));
    const std::string blanks(42, ' ');
    const std::string tabs = "\t\t\t\t\t\t\t ";
    const std::string parts[] = {
        "\nCoefficient          0.125      0.500   -0.250    1.000    0.125    0.062  -10.000  "
        "1000.500  \n",
        "\nX1\t\t\t1 \t\tI{ 0  }            " + tabs + "30\nX2\t\t\t1 \t\tI{ 1 2  }      " + tabs +
            "10\nX3\t\t\t2 \t\tI{  }                  " + tabs + "20\nX4\t\t\t1 2 \t\tI{ 0/0 }" +
            blanks + "      \t\t 20\nX5\t\t\t1 2 \t\tI{ 1/0 or 2/2 }" + blanks +
            "\t\t 10\nX6\t\t\t1 \t\tI{ 0 1 2  }" + tabs + "10\n",
        "\nMarker\t 1\nGenotype\t\t\t 0\t\t1\t\t2\t\t\n# of cases/# of controls\t 3/1\t\t1/3\t\t0/0"
        "\t\t\nStatistic value\t\t\t 1.414\t\t -1.414\t\t 0\t\t \n"
        "P-value\t\t\t\t 0.157299\t 0.157299\t 0.999992\t \n"
        "Clustering results: 3 groups \t S1={0}\tS2={1}\tS3={2}\t\n",
        "# of controls\t 2/2\t\t1/1\t\t0/0\t\t\nStatistic value\t\t\t 0\t\t0\t\t0\t\t \n"
        "P-value\t\t\t\t 1\t\t 1\t\t 0.999992\t \nClustering results: 1 groups \t S1={0,1,2}\t\n",
        "Clustering results: 0 groups \t S1={0,2}\tS2={1}\t\n\n\nTwo-locus combinations \n"
        "\nMarkers\t 1,2\n",
        "\t 2/1\t\t0/0\t\t0/0\t\t0/1\t\t1/1\t\t0/0\t\t0/0\t\t0/0\t\t0/0\t\t\nStatistic value\t\t\t "
        "0.73\t\t 0\t\t 0\t\t -1.069\t\t 0.99999\t 0\t\t 0\t\t 0\t\t 0\t\t \n"
        "P-value\t\t\t\t 0.465209\t 0.999992\t 0.999992\t 0.285049\t 0.99999\t 0.999992\t "
        "0.999992\t 0.999992\t 0.999992\t \n"
        "Clustering results: 2 groups \t S1={0/0,0/2,1/1,1/2,2/0,2/1}\tS2={0/1,1/0}\tS3={2/2}\t\n",
        "\nMarker   : 2\t 1\t \nImportant: 66.6\t 33.3\t \n"};
    for (const std::string& part : parts) EXPECT_THAT(text, HasSubstr(part));
    EXPECT_THAT(console, HasSubstr("sigma1=2 y_bar=0.5\nSingle Marker \n"));
}

TEST(FinalReport, Borders) {
    // In a cell that holds everybody the statistic is 0/0.
    const auto one = learner(1, {3}, {2}, 1, 1, {});
    EXPECT_THAT(report({one}, 3, {3}, {0}).text,
                AllOf(HasSubstr("of controls\t 0/0\t\t0/0\t\t4/4\t\t\n"),
                      HasSubstr("\nStatistic value\t\t\t 0\t\t 0\t\t -2.14748e+06\t\t \n"),
                      HasSubstr("\nP-value\t\t\t\t 0.999992\t 0.999992\t -nan\t \n"),
                      HasSubstr("\nImportant: -2.14748e+08\t \n")));  // 0 of 0 is no number
    EXPECT_THAT(report({one}, 0, {1}, {1}).text,
                HasSubstr("of first individual \nThe first ten marker of last  individual \n"));
}

}  // namespace
}  // namespace vort::testing
