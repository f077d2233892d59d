#include "common/file_descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vort {

namespace {

constexpr unsigned kPermissions = 0666;  // less what the process' mask takes away

// Repeats what a signal interrupted.
template <typename Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

std::optional<FileIdentity> identity_in(int found, const struct stat& status) {
    if (found != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino};
}

}  // namespace

std::optional<FileIdentity> identity_of(const std::string& path) {
    struct stat status {};
    const int found = ::stat(path.c_str(), &status);
    return identity_in(found, status);
}

std::optional<FileIdentity> identity_of_name(const std::string& path) {
    struct stat status {};
    const int found = ::lstat(path.c_str(), &status);
    return identity_in(found, status);
}

FileDescriptor::FileDescriptor(const std::string& path, int flags)
    : number_(
          uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, kPermissions); })) {
    note(is_open());
}

FileDescriptor::FileDescriptor(FileDescriptor&& other) noexcept
    : number_(std::exchange(other.number_, -1)), error_(other.error_) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(number_, other.number_);
    std::swap(error_, other.error_);
    return *this;
}

bool FileDescriptor::is_regular_file() const {
    struct stat status {};
    return ::fstat(number_, &status) == 0 && S_ISREG(status.st_mode);
}

std::optional<FileIdentity> FileDescriptor::identity() const {
    struct stat status {};
    const int found = ::fstat(number_, &status);
    return identity_in(found, status);
}

FileDescriptor FileDescriptor::duplicate() const {
    FileDescriptor copy;
    copy.number_ = ::fcntl(number_, F_DUPFD_CLOEXEC, 0);
    return copy;
}

bool FileDescriptor::note(bool done) {
    if (!done && error_ == 0) error_ = errno;
    return done;
}

std::size_t FileDescriptor::read(char* to, std::size_t size) {
    const ssize_t got = uninterrupted([&] { return ::read(number_, to, size); });
    return note(got >= 0) ? static_cast<std::size_t>(got) : 0;
}

bool FileDescriptor::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written =
            uninterrupted([&] { return ::write(number_, text.data(), text.size()); });
        if (!note(written >= 0)) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Pipes and devices have nothing to bring to a disk.
bool FileDescriptor::sync() {
    const int done = uninterrupted([&] { return ::fsync(number_); });
    return note(done == 0 || errno == EINVAL || errno == EROFS || errno == ENOTSUP);
}

// Closed it is in any case: a second close could meet another file of the same number.
bool FileDescriptor::close() {
    if (!is_open()) return error_ == 0;
    return note(::close(std::exchange(number_, -1)) == 0 || errno == EINTR);
}

}  // namespace vort
