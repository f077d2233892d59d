#include "common/odd_files.h"

#include <filesystem>

namespace vort {

void tell_pipe(std::string_view path, Diagnostics& diagnostics) {
    std::error_code failure;
    if (!std::filesystem::is_fifo(path, failure) || path.starts_with("/dev/fd/")) return;
    diagnostics.say("pipes", path, 0, "is a pipe; what a writer puts into it is waited for");
}

void tell_byte_order_mark(TextInput& input, std::string_view path, Diagnostics& diagnostics) {
    if (!input.has_byte_order_mark()) return;
    diagnostics.say("byte order marks", path, 1,
                    "begins with a byte order mark, which is read as part of the first word; save "
                    "the file as UTF-8 without one");
}

}  // namespace vort
