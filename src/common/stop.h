// An early end of the run.
//
// Thrown by whatever cannot go on; only the command line turns it into the end of the process,
// after what was to be said before it has been said.
#pragma once

#include <string>
#include <utility>

namespace vort {

struct Stop {
    int status = 0;    // of the process; problems of files, parameters and data have 0
    std::string text;  // still to be written to standard output
};

[[noreturn]] inline void stop(std::string text, int status = 0) {
    throw Stop{status, std::move(text)};
}

}  // namespace vort
