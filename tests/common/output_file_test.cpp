// What a run shares with others: report files, standard error, directories and memory.
#include "common/output_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <optional>

#include "common/directory_lock.h"
#include "common/memory_check.h"
#include "support/temporary_folder.h"
#include "support/told.h"

namespace vort::testing {
namespace {

using Mode = OutputFile::Mode;

TEST(OutputFile, TruncatesOrAppendsAndSaysWhatItCouldNotOpenOrWrite) {
    const TemporaryFolder folder;
    Told told;
    write_file("report", "before\n");
    { OutputFile("report", Mode::kAppend, told.diagnostics) << "after " << 2; }
    EXPECT_EQ(read_file("report"), "before\nafter 2");
    OutputFile file("report", Mode::kTruncate, told.diagnostics);
    file << 3;
    EXPECT_TRUE(file.is_open() && file.close() && file.close());
    EXPECT_EQ(read_file("report"), "3");
    remove_file("report");
    EXPECT_FALSE(std::filesystem::exists("report"));
    for (const auto mode : {Mode::kTruncate, Mode::kAppend}) {
        OutputFile absent("absent/report", mode, told.diagnostics);
        absent << "lost";
        EXPECT_FALSE(absent.is_open() || absent.close());
        EXPECT_EQ(told.take(),
                  "absent/report: could not be opened for writing (No such file or directory)\n");
    }
    // /dev/full opens, and every write to it finds the disk full: at the end, or on the way.
    for (const std::size_t size : {1UL, 1000000UL}) {
        OutputFile full("/dev/full", Mode::kTruncate, told.diagnostics);
        full << std::string(size, 'x');
        EXPECT_FALSE(full.close());
        EXPECT_EQ(told.take(), "/dev/full: could not be fully written (No space left on device)\n");
    }
}

TEST(WholeFile, HasItsNameWhenAllOfItIsWritten) {
    const TemporaryFolder folder;
    Told told;
    write_file("report", "earlier");
    write_file("report.unfinished", "of a run that was killed");
    {
        WholeFile given_up("report", told.diagnostics);
        EXPECT_TRUE(given_up.is_open() && given_up.write("new"));
    }
    EXPECT_EQ(read_file("report"), "earlier");
    {
        WholeFile file("report", told.diagnostics);
        EXPECT_TRUE(file.is_open() && file.write("new"));
        EXPECT_EQ(read_file("report"), "earlier");
        EXPECT_TRUE(file.take_name());
    }
    EXPECT_EQ(read_file("report"), "new");
    EXPECT_FALSE(std::filesystem::exists("report.unfinished"));
    EXPECT_EQ(told.take(), "");
    // Never through a link, and not into the place of a directory.
    std::filesystem::create_symlink("report", "other.unfinished");
    std::filesystem::create_directories("other/within");
    {
        WholeFile file("other", told.diagnostics);
        EXPECT_TRUE(file.write("x"));
        EXPECT_FALSE(file.take_name());
    }
    EXPECT_EQ(read_file("report"), "new");
    EXPECT_EQ(told.take(), "other: could not be replaced (Is a directory)\n");
    // Two at a time: nobody gets what the other has begun.
    std::optional<WholeFile> first(std::in_place, "shared", told.diagnostics);
    EXPECT_TRUE(first->write("first"));
    WholeFile second("shared", told.diagnostics);
    EXPECT_FALSE(first->take_name());
    first.reset();
    EXPECT_EQ(told.take(), "shared: could not be replaced (Stale file handle)\n");
    EXPECT_TRUE(second.write("second") && second.take_name());
    EXPECT_EQ(read_file("shared"), "second");
}

TEST(Diagnostics, ShowNoControlCharacter) {
    Told told;
    told.diagnostics.say("odd names", "d\x9f\xc3\x9f", 0, "\x1b[2J \x7f \xc2\x9b \xc2\xa0");
    EXPECT_EQ(told.take(), "d\x9f\xc3\x9f: ?[2J ? \xc2? \xc2\xa0\n");
}

TEST(Diagnostics, HoldsBackAllButTenLinesOfAKindAndRepetitions) {
    Told told;
    std::string expected;
    for (int line = 1; line <= 12; ++line) {
        told.diagnostics.say("odd rows", "data", line, "odd");
        if (line <= 10) expected += "data:" + std::to_string(line) + ": odd\n";
        told.diagnostics.say("whole files", "other", 0, "no line");
        if (line == 1) expected += "other: no line\n";
    }
    EXPECT_EQ(told.take(), expected + "... and 2 more odd rows\n");
}

// Whether another process gets the lock.
bool held_elsewhere(const std::string& path) {
    const pid_t child = ::fork();
    if (child == 0) std::_Exit(DirectoryLock(path).held() ? 1 : 0);
    int status = -1;
    ::waitpid(child, &status, 0);
    return WEXITSTATUS(status) == 1;
}

TEST(DirectoryLock, IsHeldOnceAndReleased) {
    const TemporaryFolder folder;
    std::optional<DirectoryLock> lock(".");
    EXPECT_TRUE(lock->held());
    EXPECT_FALSE(DirectoryLock(std::filesystem::current_path()).held() || held_elsewhere("."));
    EXPECT_TRUE(held_elsewhere("absent")) << "no directory, nothing to lock";
    lock.reset();
    EXPECT_TRUE(held_elsewhere(".") && DirectoryLock(".").held());
    EXPECT_TRUE(std::filesystem::is_empty(".")) << "no file is left";
}

// The limit with one more file in a made-up tree of files.
double limit_with(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    write_file(path, text);
    return memory_limit(path.substr(0, 2)).bytes;
}

TEST(MemoryLimit, IsTheSmallestOfTheGroupsAboveTheProcess) {
    const TemporaryFolder folder;
    const double machine = memory_limit("no tree").bytes;
    EXPECT_EQ(limit_with("v2/proc/self/cgroup", "5:cpuset:/a\nodd\n0::/a/b\n"), machine);
    EXPECT_EQ(limit_with("v2/sys/fs/cgroup/memory.max", "5000\n"), 5000);
    EXPECT_EQ(limit_with("v2/sys/fs/cgroup/a/memory.max", "4000\n"), 4000);
    EXPECT_EQ(limit_with("v2/sys/fs/cgroup/a/memory.max", "max\n"), 5000);
    EXPECT_EQ(limit_with("v2/sys/fs/cgroup/a/b/memory.max", "3000\n"), 3000);
    EXPECT_EQ(memory_limit("v2").whose, "allowed by the cgroup");
    const std::string v1 = "v1/sys/fs/cgroup/memory/";
    EXPECT_EQ(limit_with("v1/proc/self/cgroup", "4:cpu,memory:/a\n3:memoryless:/b\n"), machine);
    EXPECT_EQ(limit_with(v1 + "b/memory.limit_in_bytes", "1\n"), machine);
    EXPECT_EQ(limit_with(v1 + "a/memory.limit_in_bytes", "9223372036854771712\n"), machine);
    EXPECT_EQ(limit_with(v1 + "memory.limit_in_bytes", "2000\n"), 2000);
}

TEST(RequireMemory, StopsWhereSizesAreBeyondTheLimit) {
    Told told;
    EXPECT_EQ(stop_of([&] { require_memory(1e6, "a little", told.diagnostics); }), "goes on");
    EXPECT_EQ(stop_of([&] { require_memory(3e18, "all that", told.diagnostics); }), "0 ");
    EXPECT_EQ(told.take().find("parameter.txt: all that would take 3e+09 GB, more than the "), 0U);
}

}  // namespace
}  // namespace vort::testing
