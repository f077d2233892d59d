// Input files that cannot be used.
//
// Thrown by the readers of files that have no old rule about what to make of their faults; the
// command line writes the text to standard error.
#pragma once

#include <string>
#include <string_view>

namespace vort {

struct InputError {
    std::string text;  // "FILE:LINE: what was found; what was expected; what to do", one line
};

// `line` is 1-based; 0 leaves it out.
[[noreturn]] inline void input_error(std::string_view file, long line, std::string_view text) {
    std::string whole = std::string(file) + ':';
    if (line > 0) whole += std::to_string(line) + ':';
    throw InputError{whole.append(" ").append(text)};
}

}  // namespace vort
