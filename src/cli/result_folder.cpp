#include "cli/result_folder.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

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

std::string without_slashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string megabytes(double bytes) {
    return std::to_string(static_cast<long>(std::ceil(bytes / 1e6))) + " MB";
}

}  // namespace

ResultFolder::ResultFolder(std::string path, std::span<const char* const> names, bool force)
    : path_(without_slashes(std::move(path))),
      unfinished_(path_ + '/' + kUnfinished + '/'),
      names_(names) {
    make();
    lock_ = std::make_unique<DirectoryLock>(path_);
    if (!lock_->held()) {
        throw InputError{path_ + ": another run is at work there; name another directory"};
    }
    look_for_results(force);
    discard();
    std::error_code failure;
    if (fs::create_directory(unfinished_, failure)) return;
    throw InputError{path_ + ": cannot be written (" + failure.message() +
                     "); a directory of your own was expected"};
}

void ResultFolder::make() {
    std::error_code failure;
    made_ = fs::create_directories(path_, failure);
    std::error_code unseen;
    if (fs::is_directory(path_, unseen)) return;
    throw InputError{path_ + ": cannot be made (" + (failure ? failure : unseen).message() +
                     "); a directory for the results was expected"};
}

void ResultFolder::look_for_results(bool force) const {
    for (const char* name : names_) {
        const fs::path result = fs::path(path_) / name;
        std::error_code failure;
        const fs::file_status there = fs::symlink_status(result, failure);
        if (!fs::exists(there)) continue;
        if (fs::is_directory(there)) {
            throw InputError{result.string() +
                             ": is a directory; a place for a file was expected; remove it"};
        }
        if (force) continue;
        throw InputError{result.string() +
                         ": is there already; name another directory, or replace it by --force"};
    }
}

ResultFolder::~ResultFolder() {
    discard();
    std::error_code failure;
    if (made_ && !published_) fs::remove(path_, failure);
}

// Without the slash at its end, a link would not be followed.
void ResultFolder::discard() {
    const std::scoped_lock lock(mutex_);
    std::error_code failure;
    fs::remove_all(fs::path(path_) / kUnfinished, failure);
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
    const std::scoped_lock lock(mutex_);
    for (const auto& entry : fs::directory_iterator(unfinished_)) flush(entry.path());
    const fs::path folder(path_);
    std::error_code absent;
    fs::remove(folder / names_.back(), absent);
    for (const char* name : names_) {
        if (fs::exists(unfinished_ + name)) {
            fs::rename(unfinished_ + name, folder / name);
        } else {
            fs::remove(folder / name, absent);
        }
    }
    published_ = true;
    flush(folder);
}

}  // namespace vort
