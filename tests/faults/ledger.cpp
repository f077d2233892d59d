#include "ledger.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace vort::faults {

thread_local bool inside = false;

Allocations allocations;

Inside::Inside() : before_(std::exchange(inside, true)), error_(errno) {}

Inside::~Inside() {
    inside = before_;
    errno = error_;
}

namespace {

constexpr const char* kStandardOutput = "<stdout>";

int error_named(std::string_view name) {
    constexpr std::array errors = {EIO,   ENOSPC, EMFILE, EACCES, EINTR,  ENOMEM, EDQUOT,
                                   EPERM, ENOLCK, ENODEV, EROFS,  EAGAIN, EEXIST, EXDEV};
    for (const int error : errors) {
        if (name == ::strerrorname_np(error)) return error;
    }
    std::abort();  // a name that the tests have wrong
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

// "a//b/./c/../" is "a/b"; links are taken as folders.
std::string without_detours(std::string_view path) {
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string_view part = path.substr(begin, end - begin);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.push_back(part);
        }
        begin = end + 1;
    }
    std::string out;
    for (const std::string_view part : parts) out += '/' + std::string(part);
    return out;
}

}  // namespace

Ledger& Ledger::instance() {
    static Ledger& ledger = *new Ledger;  // calls come until the very end of the process
    return ledger;
}

Ledger::Ledger() : log_(variable("VORT_FAULTS_LOG")), at_(variable("VORT_FAULTS_AT")) {
    const std::string watch = variable("VORT_FAULTS_WATCH");
    for (std::size_t begin = 0; begin < watch.size();) {
        const std::size_t end = std::min(watch.find(':', begin), watch.size());
        folders_.push_back(watch.substr(begin, end - begin));
        if (folders_.back() == kStandardOutput) files_[STDOUT_FILENO] = kStandardOutput;
        begin = end + 1;
    }
    if (!at_.empty()) set_fault();
}

void Ledger::set_fault() {
    std::string deed = variable("VORT_FAULTS_DO");
    lasting_ = deed.ends_with('+');
    if (lasting_) deed.pop_back();
    if (at_.starts_with("alloc ")) {
        allocations.first_failing = std::atol(at_.c_str() + std::strlen("alloc "));
        allocations.last_failing = lasting_ ? LONG_MAX : allocations.first_failing.load();
    } else if (deed == "short") {
        fault_ = {Deed::kShort, 0};
    } else if (deed == "kill-before") {
        fault_ = {Deed::kKillBefore, 0};
    } else if (deed == "kill-after") {
        fault_ = {Deed::kKillAfter, 0};
    } else {
        fault_ = {Deed::kFail, error_named(deed)};
    }
}

std::optional<std::string> Ledger::watched(int directory, const char* path) {
    if (path == nullptr) return {};
    std::string full = path;
    if (!full.starts_with('/')) {
        const std::optional<std::string> base = name_of(directory);
        if (base) return without_detours('/' + *base + '/' + full).substr(1);
        if (directory != AT_FDCWD) return {};
        std::array<char, PATH_MAX> here{};
        if (::syscall(SYS_getcwd, here.data(), here.size()) < 0) return {};
        full = std::string(here.data()) + '/' + full;
    }
    full = without_detours(full);
    for (const std::string& folder : folders_) {
        if (full == folder) return ".";
        if (full.starts_with(folder + '/')) return full.substr(folder.size() + 1);
    }
    return {};
}

void Ledger::opened(int file, const std::string& name) {
    const std::scoped_lock lock(mutex_);
    files_[file] = name;
}

std::optional<std::string> Ledger::name_of(int file) {
    const std::scoped_lock lock(mutex_);
    const auto found = files_.find(file);
    if (found == files_.end()) return {};
    return found->second;
}

void Ledger::closed(int file) {
    const std::scoped_lock lock(mutex_);
    files_.erase(file);
}

bool Ledger::fails(const std::string& kind, const std::string& position) {
    if (position == at_) {
        failing_ = lasting_;
        return true;
    }
    return failing_ && at_.starts_with(kind + ' ') &&
           at_.ends_with(kStandardOutput) == position.ends_with(kStandardOutput);
}

Verdict Ledger::reach(const char* kind, const std::string& name) {
    const std::scoped_lock lock(mutex_);
    allocations.counting = true;
    const int count = ++reached_[std::string(kind) + ' ' + name];
    const std::string position = std::string(kind) + ' ' + std::to_string(count) + ' ' + name;
    const bool failing = fails(kind, position);
    log((failing ? "!" : "") + position + '\n');
    return failing ? fault_ : Verdict{};
}

void die() {
    ::syscall(SYS_kill, ::syscall(SYS_getpid), SIGKILL);
    for (;;) ::pause();
}

// By system calls alone, as everything here that must not come back here.
void Ledger::log(const std::string& line) const {
    if (log_.empty()) return;
    const long file = ::syscall(SYS_openat, AT_FDCWD, log_.c_str(),
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    ::syscall(SYS_write, file, line.data(), line.size());
    ::syscall(SYS_close, file);
}

}  // namespace vort::faults
