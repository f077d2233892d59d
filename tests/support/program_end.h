// Ends of the program as EXPECT_EXIT sees them.
#pragma once

#include <gtest/gtest.h>

#include <iostream>

namespace vort::testing {

// EXPECT_EXIT looks at standard error only. Called first thing in its statement, this lets it see
// the messages on the console too; the process that it happens in is about to end.
inline void console_to_stderr() {
    std::cout.rdbuf(std::cerr.rdbuf());
}

// Files, parameters and data end the program with this status.
inline ::testing::ExitedWithCode status_zero() {
    return ::testing::ExitedWithCode(0);
}

}  // namespace vort::testing
