// The fatal end of the numerical toolkit.
#pragma once

namespace vort {

// Writes a heading, `text` and a closing line to standard error and ends the process with status 1
// through std::exit, so that whatever the console still holds is written out.
[[noreturn]] void nrerror(const char* text);

}  // namespace vort
