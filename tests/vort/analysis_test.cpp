// Whole analyses in memory: the golden cases on any number of threads, and early ends.
#include "vort/analysis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/golden_study.h"
#include "support/masked_seconds.h"

namespace vort::testing {
namespace {

using ::testing::EndsWith;
using ::testing::MatchesRegex;

struct AnalysisRun {
    AnalysisRun(GoldenStudy& golden, const AnalysisOptions& options) {
        Told told;
        const Console keep = [this](std::string_view text) { console += text; };
        stopped = stop_of([&] {
            result = analyse(golden.study, golden.settings, options, keep, told.diagnostics);
        });
        console = with_masked_seconds(console);
        diagnostics = told.take();
    }

    Result result;
    std::string console;
    std::string stopped;
    std::string diagnostics;
};

TEST(Analyse, GoldenCasesOnAnyNumberOfThreads) {
    for (const std::string& name : kGoldenCases) {
        Result first;
        for (const int threads : {1, 2, 3, 16}) {
            SCOPED_TRACE(name + ", threads " + std::to_string(threads));
            const TemporaryFolder folder;
            std::filesystem::create_directory("out");
            GoldenStudy golden(name, threads);
            AnalysisOptions options;
            options.threads = threads;
            options.folder = "out/";
            const AnalysisRun run(golden, options);
            ASSERT_EQ(run.stopped, "goes on");
            EXPECT_THAT(golden.expected("stdout.txt"), EndsWith(run.console + "Total time=T\n"));
            for (const char* file : {"P_value.txt", "Final_result.txt"}) {
                EXPECT_EQ(read_file(std::string("out/") + file), golden.expected(file)) << file;
            }
            if (threads == 1) first = run.result;
            EXPECT_EQ(run.result.observed, first.observed);
            EXPECT_EQ(run.result.permuted, first.permuted);
            EXPECT_EQ(run.result.markers, first.markers);
            EXPECT_EQ(run.result.importance, first.importance);
            EXPECT_EQ(run.result.columns, first.columns);
            ASSERT_EQ(run.result.learners.size(), first.learners.size());
            for (std::size_t b = 0; b < first.learners.size(); ++b) {
                EXPECT_EQ(run.result.learners[b].beta, first.learners[b].beta);
                EXPECT_EQ(run.result.learners[b].cells, first.learners[b].cells);
            }
        }
    }
}

// The names are looked up last.
TEST(Analyse, AMarkerTableThatCannotBeUsedStopsBehindTheReport) {
    const TemporaryFolder folder;
    GoldenStudy golden("small");
    golden.study.markers = MarkerTable::from_file("absent.txt", 5);
    const AnalysisRun run(golden, {});
    EXPECT_THAT(run.stopped, MatchesRegex("0 open file absent.txt [a-z ]+error\n"));
    EXPECT_EQ(read_file("P_value.txt"), golden.expected("P_value.txt"));
    const std::string report = golden.expected("Final_result.txt");
    EXPECT_EQ(read_file("Final_result.txt"), report.substr(0, report.find("\n\nMarker \t")));
}

TEST(CheckSizes, EndsTheRunWhereNothingCanBeAnalysed) {
    const struct {
        int individuals, markers, permutations;
        const char* told;
    } rows[] = {
        {0, 6, 1, "Sample_size 0, Number_of_markers 6 and Number_of_permutation 1 cannot be .*"},
        {60, 6, -1, ".*Number_of_permutation -1 cannot be analysed.*"},
        {2000000000, 2000000000, 1, ".*1 permutations \\(Number_of_permutation\\) would take .*"},
        {60, 6, 1, ""},
        {60, 0, 0, ""},
    };
    for (const auto& row : rows) {
        Settings settings;
        settings.screening.individuals = settings.builder.individuals = row.individuals;
        settings.screening.markers = settings.builder.markers = row.markers;
        settings.screening.permutations = row.permutations;
        Told told;
        const bool stops = *row.told != '\0';
        EXPECT_EQ(stop_of([&] { check_sizes(settings, {}, false, told.diagnostics); }),
                  stops ? "0 " : "goes on");
        EXPECT_THAT(told.take(),
                    MatchesRegex(stops ? "parameter.txt: " + std::string(row.told) + "\n?" : ""));
    }
}

}  // namespace
}  // namespace vort::testing
