// Ends for lack of memory, which must be told without any.
#pragma once

namespace vort {

// Says so on standard error, by no means that could fail for the same reason.
void tell_lack_of_memory();

// From now on, where lack of memory strikes while things are taken down, in a destructor of a
// library's too, the process ends with these words and this status instead of a signal. What is
// unfinished is then left, as by a kill.
void tell_lack_of_memory_at_any_end(int status);

}  // namespace vort
