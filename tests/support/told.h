// What the code under test says on standard error, and how it stops.
#pragma once

#include <sstream>
#include <string>

#include "common/diagnostics.h"
#include "common/stop.h"

namespace vort::testing {

class Told {
  public:
    Diagnostics& diagnostics() { return diagnostics_; }

    // All lines since the last call, counts of held-back lines included; lines of a kind count from
    // the beginning again.
    std::string take() {
        diagnostics_.finish();
        std::string text = text_.str();
        text_.str("");
        return text;
    }

  private:
    std::ostringstream text_;
    Diagnostics diagnostics_{text_};
};

// Lines "3: text", or "text" where there is no line number, as they read for `file`.
inline std::string said_of(const std::string& file, const std::string& lines) {
    std::string text;
    for (const char c : lines) {
        if (text.empty() || text.back() == '\n') text += file + (c >= '0' && c <= '9' ? ":" : ": ");
        text += c;
    }
    return text;
}

// "STATUS TEXT" of the stop that `act` ends in; "goes on" where it does not.
template <typename Act>
std::string stop_of(Act act) {
    try {
        act();
        return "goes on";
    } catch (const Stop& stop) {
        return std::to_string(stop.status) + ' ' + stop.text;
    }
}

}  // namespace vort::testing
