// Coefficients read back, shares of importance, and the copy of a text file.
#include "ensemble/importance.h"

#include "support/builder_study.h"

namespace vort::testing {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::StartsWith;

using Importance = BuilderTest;

TEST_F(Importance, CoefficientFiles) {
    using Values = std::vector<double>;
    const struct {
        const char* text;
        int columns, lines;
        Values beta, second;
        const char* printed;
    } cases[] = {
        {"3\n2\nbeta[ 0 ]= -0.5 0.25\nbeta[ 2 ]= 1e-7 0.125\n",
         3,
         2,
         {-0.5, 0, 1e-7},
         {0.25, 0, 0.125},
         "beta[0]=-0.5 beta[2]=1e-07 \n"},
        {"2\n0\n", 2, 0, {0, 0}, {0, 0}, "\n"},
        {"", 0, 0, {}, {}, "\n"},
        {"-2 0", -2, 0, {}, {}, "\n"},
        // A line of no column, and one that stops being numbers: the rest keeps its zeroes.
        {"2 3 b 2 = 7 7\nb -1 = 8 8\nb 1 = 9 9\n", 2, 3, {0, 9}, {0, 9}, "b2=7 b-1=8 b1=9 \n"},
        {"2 2 b 0 = x 7 b 1 = 3 3\n", 2, 2, {0, 0}, {0, 0}, "b0=0 \n"},
        // Fewer lines than announced: what was read stands.
        {"1 1000000000 b 0 = 6 2\n", 1, 1000000000, {6}, {2}, "b0=6 "},
    };
    int lines = -1;
    double* beta = nullptr;
    double* second = nullptr;
    EXPECT_EQ(readbeta("missing.txt", &beta, &lines, &second), 0);
    EXPECT_EQ(lines, -1);
    EXPECT_EQ(beta, nullptr);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        write_file("beta.txt", c.text);
        const ConsoleCapture console;
        EXPECT_EQ(readbeta("beta.txt", &beta, &lines, &second), c.columns);
        const std::unique_ptr<double[]> own_beta(beta);
        const std::unique_ptr<double[]> own_second(second);
        EXPECT_EQ(lines, c.lines);
        EXPECT_EQ(Values(beta, beta + c.beta.size()), c.beta);
        EXPECT_EQ(Values(second, second + c.second.size()), c.second);
        EXPECT_THAT(console.text(), AllOf(StartsWith(c.printed), EndsWith("\n")));
    }
}

TEST_F(Importance, SharesOfABaseLearner) {
    BestClusterInformation pair(2, 2, 5);
    pair.combination_index = 6;  // of five markers: 2 and 4
    pair.AddMemberInGroup(0, 2, 7);
    pair.AddMemberInGroup(1, 1, 3);
    pair.AddMemberInGroup(0, 3, 0);
    std::vector<double> importance = {-1, 0, 0.5, 0, 1, 0};
    std::array<int, 3> markers{9, 9, 9};
    std::array<int, 10> cells{};
    int ncell = -1;
    const auto share = [&](BestClusterInformation& record, double beta, double v, int group) {
        const ConsoleCapture console;
        calculationimportfactor(&record, importance.data(), beta, v, group == 0, markers.data(),
                                &ncell, cells.data(), group);
        return console.text();
    };
    EXPECT_EQ(share(pair, -0.5, 0.01, 0),
              "importantfactor[2]=25.5 beta[q]=-0.5\nimportantfactor[4]=26 beta[q]=-0.5\n"
              "GenotypeCode of group number=0\n7 0 \n");
    EXPECT_EQ(importance, (std::vector<double>{-1, 0, 25.5, 0, 26, 0}));
    EXPECT_EQ(markers, (std::array<int, 3>{9, 2, 4}));
    EXPECT_EQ(ncell, 2);
    EXPECT_EQ(cells, (std::array<int, 10>{7, 0}));

    BestClusterInformation single(1, 2, 5);
    single.combination_index = 4;
    EXPECT_EQ(share(single, 2, 0.5, 2), "GenotypeCode of group number=2\n\n");
    EXPECT_EQ(importance[4], 30);
    EXPECT_EQ(markers, (std::array<int, 3>{9, 4, 4}));
    EXPECT_EQ(ncell, 0);

    pair.combination_index = 11;  // there is no such set
    EXPECT_THAT(share(pair, 1, 1, 0), StartsWith("H[l] find problemH[l] find problemGenotypeCode"));
    EXPECT_EQ(importance, (std::vector<double>{-1, 0, 25.5, 0, 30, 0}));
}

TEST_F(Importance, CopiedText) {
    const std::pair<std::string, std::string> cases[] = {
        {"a b\n\nc", "a b\n\nc\n"},
        {"\n\n \t a\n", "a\n\n"},
        {" \n", "\n"},
        {"a\xFF rest", "a\n"},
        {std::string("a\0b\r\n", 5), std::string("a\0b\r\n\n", 6)},
    };
    write_file("copy.txt", "what was there before");
    for (const auto& [text, copy] : cases) {
        write_file("source.txt", text);
        EXPECT_EQ(filecopy("source.txt", "copy.txt"), 0);
        EXPECT_EQ(read_file("copy.txt"), copy);
    }
    EXPECT_EQ(filecopy("source.txt", "no-such-folder/copy.txt"), 1);
    expect_end([] { filecopy("missing.txt", "copy.txt"); }, "^Don't find file missing.txt\n$");
}

}  // namespace
}  // namespace vort::testing
