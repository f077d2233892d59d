#include "cli/task_mark.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <thread>

#include "cli/run_log.h"
#include "common/input_error.h"
#include "common/output_file.h"

namespace vort {

namespace {

// Nor is a pipe's other end waited for.
constexpr int kNoLink = O_NOFOLLOW | O_NONBLOCK;

// False where another process has the lock; a file system without locks has none to give.
bool lock(const FileDescriptor& file) {
    int done = 0;
    do {
        done = ::flock(file.number(), LOCK_EX | LOCK_NB);
    } while (done != 0 && errno == EINTR);
    return done == 0 || errno != EWOULDBLOCK;
}

std::string text_of(FileDescriptor& file) {
    std::array<char, 512> text{};
    return {text.data(), file.read(text.data(), text.size())};
}

std::string own_text() {
    return "since " + time_text(std::chrono::system_clock::now()) + ", process " +
           std::to_string(::getpid()) + " on " + host_name();
}

}  // namespace

TaskMark::TaskMark(std::string path)
    : path_(std::move(path)), file_(path_, O_RDWR | O_CREAT | kNoLink) {
    if (file_.error() == ELOOP || (file_.is_open() && !file_.is_regular_file())) {
        throw InputError{path_ + ": is no file that a task has left; remove it"};
    }
    if (!file_.is_open()) return;  // whoever cannot write here is told so by the part
    // Somebody who only looks has it for a moment.
    for (int tries = 0; !lock(file_); ++tries) {
        if (tries < 20) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            continue;
        }
        const std::string other = text_of(file_);
        throw InputError{path_ + ": another process is at work on the task, " + other +
                         "; wait for it"};
    }
    if (::ftruncate(file_.number(), 0) == 0) file_.write(own_text());
}

TaskMark::~TaskMark() {
    if (file_.is_open()) remove_file(path_);
}

std::optional<TaskMark::Worker> TaskMark::read(const std::string& path) {
    FileDescriptor file(path, O_RDONLY | kNoLink);
    if (!file.is_open() || !file.is_regular_file()) return std::nullopt;
    const bool at_work = !lock(file);
    return Worker{text_of(file), at_work};
}

}  // namespace vort
