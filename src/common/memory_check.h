// Sizes that a parameter file may ask for, against what this machine holds.
#pragma once

#include <string>

namespace vort {

// Ends the program, with a line on standard error that names `what`, where `bytes` exceed the
// machine's memory. A double, so that no product of sizes can overflow on the way here.
void require_memory(double bytes, const std::string& what);

}  // namespace vort
