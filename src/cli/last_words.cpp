#include "cli/last_words.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

namespace vort {

namespace {

std::atomic<int> status_of_end{1};

// Other faults keep their core.
[[noreturn]] void end_where_memory_lacks() {
    try {
        if (const std::exception_ptr fault = std::current_exception()) {
            std::rethrow_exception(fault);
        }
    } catch (const std::bad_alloc&) {
        tell_lack_of_memory();
        ::_exit(status_of_end);
    } catch (...) {
    }
    std::abort();
}

}  // namespace

void tell_lack_of_memory() {
    constexpr std::string_view kTold = "vort: the memory does not suffice\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kTold.data(), kTold.size());
}

void tell_lack_of_memory_at_any_end(int status) {
    status_of_end = status;
    std::set_terminate(end_where_memory_lacks);
}

}  // namespace vort
