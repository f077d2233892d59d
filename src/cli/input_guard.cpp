#include "cli/input_guard.h"

#include <unistd.h>

#include <csignal>
#include <string_view>

#include "cli/exit_status.h"
#include "common/directory_names.h"
#include "common/input_error.h"
#include "common/path_names.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

// Only what is safe in a signal handler.
void end_for_shrunken_input(int) {
    constexpr std::string_view kTold =
        "vort: an input file became shorter while it was read; run it again\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kTold.data(), kTold.size());
    ::_exit(kUnusableInput);
}

}  // namespace

void InputGuard::add(std::span<const std::string> paths) {
    for (const std::string& path : paths) {
        std::error_code failure;
        if (!fs::is_regular_file(path, failure)) continue;
        seen_.push_back({path, fs::file_size(path, failure), fs::last_write_time(path, failure)});
    }
}

void InputGuard::add_folder(const std::string& folder) {
    for_each_name(folder, [&](int, const char* name) {
        const std::string path = path_in(folder, name);
        add({&path, 1});
    });
}

const InputGuard::Seen* InputGuard::first_changed() const {
    for (const Seen& before : seen_) {
        std::error_code failure;
        if (fs::file_size(before.path, failure) == before.size && !failure &&
            fs::last_write_time(before.path, failure) == before.time && !failure) {
            continue;
        }
        return &before;
    }
    return nullptr;
}

void InputGuard::require_unchanged() const {
    const Seen* const changed = first_changed();
    if (changed == nullptr) return;
    input_error(changed->path, 0,
                "changed during the run, whose results may be of both; a file that stays as it "
                "is expected; run it again");
}

void tell_shrunken_inputs() {
    struct sigaction action {};
    action.sa_handler = end_for_shrunken_input;
    ::sigaction(SIGBUS, &action, nullptr);
}

}  // namespace vort
