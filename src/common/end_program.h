// The one way in which the program ends early.
#pragma once

namespace vort {

// Writes out what the console and the diagnostics still hold and ends the process. Problems of
// files, parameters and data end with status 0 after their message on standard output; numeric
// input errors end with status 1.
[[noreturn]] void end_program(int status = 0);

}  // namespace vort
