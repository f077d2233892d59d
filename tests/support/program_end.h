// Ends of the program as EXPECT_EXIT sees them.
#pragma once

#include <gtest/gtest.h>

#include <iostream>
#include <string>

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

// Expects that `act` ends the program, and that what it then said on either stream holds a match.
template <typename Act>
void expect_end(Act act, const std::string& message) {
    EXPECT_EXIT((console_to_stderr(), static_cast<void>(act())), status_zero(), message);
}

}  // namespace vort::testing
