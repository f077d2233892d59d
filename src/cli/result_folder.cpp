#include "cli/result_folder.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "common/input_error.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

constexpr const char* kUnfinished = ".vort-unfinished";

// So that a file is on the disk before it gets its name.
void flush(const fs::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool flushed = file >= 0 && ::fsync(file) == 0;
    const int error = errno;
    if (file >= 0) ::close(file);
    if (flushed || error == EINVAL || error == EROFS) return;
    throw std::system_error(error, std::generic_category(), path.string());
}

std::string megabytes(double bytes) {
    return std::to_string(static_cast<long>(std::ceil(bytes / 1e6))) + " MB";
}

}  // namespace

ResultFolder::ResultFolder(const std::string& path, std::span<const char* const> names, bool force)
    : path_(path), unfinished_(path + '/' + kUnfinished + '/'), names_(names) {
    std::error_code failure;
    made_ = fs::create_directories(path_, failure);
    if (!fs::is_directory(path_)) {
        throw InputError{path_ + ": cannot be made" +
                         (failure ? " (" + failure.message() + ")" : std::string()) +
                         "; a directory for the results was expected"};
    }
    lock_ = std::make_unique<DirectoryLock>(path_);
    if (!lock_->held()) {
        throw InputError{path_ + ": another run is at work there; name another directory"};
    }
    for (const char* name : names_) {
        const fs::path result = fs::path(path_) / name;
        if (force || !fs::exists(fs::symlink_status(result, failure))) continue;
        throw InputError{result.string() +
                         ": is there already; name another directory, or replace it by --force"};
    }
    fs::remove_all(unfinished_, failure);
    if (fs::create_directory(unfinished_, failure)) return;
    throw InputError{path_ + ": cannot be written (" + failure.message() +
                     "); a directory of your own was expected"};
}

ResultFolder::~ResultFolder() {
    discard();
    std::error_code failure;
    if (made_ && !published_) fs::remove(path_, failure);
}

void ResultFolder::discard() const {
    std::error_code failure;
    fs::remove_all(unfinished_, failure);
}

void ResultFolder::require_room(double bytes) const {
    struct statvfs disk {};
    if (::statvfs(path_.c_str(), &disk) != 0) return;
    const double room = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
    if (room >= bytes) return;
    throw std::runtime_error(path_ + ": the disk has room for " + megabytes(room) +
                             "; the results need " + megabytes(bytes));
}

void ResultFolder::publish() {
    std::vector<fs::path> written;
    for (const auto& entry : fs::directory_iterator(unfinished_)) written.push_back(entry.path());
    for (const fs::path& file : written) flush(file);
    std::error_code absent;
    for (const char* name : names_) fs::remove(fs::path(path_) / name, absent);
    for (const fs::path& file : written) fs::rename(file, fs::path(path_) / file.filename());
    published_ = true;
    flush(path_);
}

}  // namespace vort
