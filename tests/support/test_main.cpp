// The test programs' main. Code under test may end the process with status 0; a test that dies that
// way must not count as passed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace {

pid_t test_process = 0;
bool finished = false;

// Death tests run in processes of their own, which are to end as they like.
void fail_unless_finished() {
    if (finished || ::getpid() != test_process) return;
    std::fputs("the test program ended before its tests did\n", stderr);
    std::_Exit(1);
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    test_process = ::getpid();
    std::atexit(fail_unless_finished);
    const int result = RUN_ALL_TESTS();
    finished = true;
    return result;
}
