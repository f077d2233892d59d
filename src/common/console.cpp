#include "common/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace vort {

void StandardOutput::write(std::string_view text) {
    while (!text.empty() && !failed_) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            failed_ = true;
            diagnostics_.say("failed writes to standard output", "standard output", 0,
                             std::string("could not be written (") + std::strerror(errno) +
                                 "); the reports are still made");
        }
    }
}

}  // namespace vort
