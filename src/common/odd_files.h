// Files that are read as they are, though hardly as they were meant.
#pragma once

#include <string_view>

#include "common/diagnostics.h"
#include "common/text_input.h"

namespace vort {

// Says that a pipe's writer is waited for: opening it lasts until there is one. A shell's
// <(COMMAND) has one already.
void tell_pipe(std::string_view path, Diagnostics& diagnostics);

// Says that a byte order mark will be read as part of the first word. To be called before anything
// is read.
void tell_byte_order_mark(TextInput& input, std::string_view path, Diagnostics& diagnostics);

}  // namespace vort
