// What is said on standard error: the report files, and the counting of lines of a kind.
#include "common/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "common/diagnostics.h"
#include "common/memory_check.h"
#include "support/diagnostics_capture.h"
#include "support/program_end.h"
#include "support/temporary_folder.h"

namespace vort::testing {
namespace {

using Mode = OutputFile::Mode;

TEST(OutputFile, TruncatesOrAppends) {
    const TemporaryFolder folder;
    write_file("report", "before\n");
    { OutputFile("report", Mode::kAppend) << "after " << 2 << '\n'; }
    EXPECT_EQ(read_file("report"), "before\nafter 2\n");
    OutputFile file("report", Mode::kTruncate);
    EXPECT_TRUE(file.is_open());
    file << 3;
    EXPECT_TRUE(file.close() && file.close());
    EXPECT_EQ(read_file("report"), "3");
    remove_file("report");
    EXPECT_FALSE(std::filesystem::exists("report"));
}

TEST(OutputFile, SaysWhatItCouldNotOpenOrWrite) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    DiagnosticsCapture diagnostics;
    for (const std::string path : {"folder", "absent/report", ""}) {
        for (const auto mode : {Mode::kTruncate, Mode::kAppend}) {
            OutputFile file(path, mode);
            file << "lost";
            EXPECT_FALSE(file.is_open() || file.close());
            EXPECT_EQ(diagnostics.take(), path + ": could not be opened for writing\n");
        }
    }
    // /dev/full opens, and every write to it finds the disk full.
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full here";
    for (const std::size_t size : {1UL, 1000000UL}) {  // written at the end, and on the way
        EXPECT_FALSE((OutputFile("/dev/full", Mode::kTruncate) << std::string(size, 'x')).close());
        EXPECT_EQ(diagnostics.take(),
                  "/dev/full: could not be fully written (is the disk full?)\n");
    }
}

TEST(Diagnostics, HoldsBackAllButTenLinesOfAKindAndRepetitions) {
    DiagnosticsCapture diagnostics;
    std::string expected;
    for (int line = 1; line <= 12; ++line) {
        diagnose("odd rows", "data", line, "odd");
        if (line <= 10) expected += "data:" + std::to_string(line) + ": odd\n";
        diagnose("whole files", "other", 0, "no line");
        if (line == 1) expected += "other: no line\n";
    }
    EXPECT_EQ(diagnostics.take(), expected + "... and 2 more odd rows\n");
    diagnose("odd rows", "data", 13, "odd");
    EXPECT_EQ(diagnostics.take(), "data:13: odd\n") << "the counts are forgotten";
}

TEST(DiagnosticsEnd, CountsAreWrittenWhenTheProgramEnds) {
    const auto eleven = [] {
        for (int line = 1; line <= 11; ++line) diagnose("odd ends", "data", line, "odd");
        std::exit(0);
    };
    EXPECT_EXIT(eleven(), status_zero(), "\\.\\.\\. and 1 more odd ends\n$");
}

TEST(RequireMemoryEnd, SizesBeyondTheMachineEndTheProgram) {
    require_memory(1e6, "a little");
    EXPECT_EXIT(require_memory(3e18, "all that"), status_zero(),
                "parameter.txt: all that would take 3e\\+09 GB, more than the [0-9.]+ GB");
}

}  // namespace
}  // namespace vort::testing
