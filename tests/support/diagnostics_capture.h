// Collects what the code under test says on standard error, counts of held-back lines included.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

#include "common/diagnostics.h"

namespace vort::testing {

// Lines "3: text", or "text" where there is no line number, as they read for `file`.
inline std::string said_of(const std::string& file, const std::string& lines) {
    std::string text;
    for (const char c : lines) {
        if (text.empty() || text.back() == '\n') text += file + (c >= '0' && c <= '9' ? ":" : ": ");
        text += c;
    }
    return text;
}

class DiagnosticsCapture {
  public:
    DiagnosticsCapture() : before_(std::cerr.rdbuf(text_.rdbuf())) {
        finish_diagnostics();  // what earlier tests counted
        text_.str("");
    }
    ~DiagnosticsCapture() {
        finish_diagnostics();
        std::cerr.rdbuf(before_);
    }
    DiagnosticsCapture(const DiagnosticsCapture&) = delete;

    // All lines since the last call; lines of a kind count from the beginning again.
    std::string take() {
        finish_diagnostics();
        const std::string text = text_.str();
        text_.str("");
        return text;
    }

  private:
    std::ostringstream text_;
    std::streambuf* before_;
};

}  // namespace vort::testing
