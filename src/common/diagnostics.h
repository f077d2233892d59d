// Standard error: what was wrong with the input, in one line each.
//
// Standard output carries the analysis and its own messages, whose bytes are fixed. Whatever the
// analysis ignores, cuts or guesses at is said here, with file, line and what was expected:
//
//     dat1.txt:12: row has 4 genotypes, expected 5; the rest is taken as missing
//
// At most ten lines of a kind are written; a count of the others follows when the program ends.
#pragma once

#include <string>
#include <string_view>

namespace vort {

// `kind` names what is counted, in the plural ("rows with too few genotypes"); it must outlive the
// program's run, as a string literal does. `line` is 1-based; 0 leaves it out.
void diagnose(std::string_view kind, std::string_view file, long line, const std::string& text);

// Writes the counts of the lines held back, and forgets all counts.
void finish_diagnostics();

}  // namespace vort
