// Console text without what differs from run to run.
#pragma once

#include <string>

namespace vort::testing {

// The elapsed seconds of every data set's tests read T.
inline std::string with_masked_seconds(std::string console) {
    const std::string before = "time of pvalue ";
    for (std::size_t at = 0; (at = console.find(before, at)) != std::string::npos; ++at) {
        const std::size_t from = at + before.size();
        console.replace(from, console.find('\n', from) - from, "T");
    }
    return console;
}

}  // namespace vort::testing
