// Numbers of tasks in a line.
#pragma once

#include <string>
#include <vector>

namespace vort {

// "0, 3-7, 9"; ascending numbers.
std::string list_text(const std::vector<int>& tasks);

}  // namespace vort
