// The lines of a summary.
#pragma once

#include <string>
#include <string_view>

namespace vort {

// A title in a column of its own; empty in front of a line that goes on.
std::string summary_line(std::string_view title, const std::string& text);

// "2.3 s", "3 min 20 s", "2 h 5 min".
std::string seconds_text(double seconds);

}  // namespace vort
