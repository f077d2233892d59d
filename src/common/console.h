// Standard output in large pieces.
//
// The screening prints a line for every marker of every data set, so std::cout gets a buffer of
// its own, written out at stage ends, before every end of the process, and, where standard output
// is a terminal, after every line.
#pragma once

namespace vort {

// Gives std::cout that buffer for the rest of the process; called once, first thing in main.
void open_console();

}  // namespace vort
