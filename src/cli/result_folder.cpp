#include "cli/result_folder.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "cli/doomed_files.h"
#include "common/file_descriptor.h"
#include "common/input_error.h"
#include "common/output_file.h"
#include "common/path_names.h"

namespace vort {

namespace fs = std::filesystem;

namespace {

constexpr const char* kUnfinished = ".vort-unfinished";

// So that what was written is on the disk before it gets its name.
void flush(const std::string& path) {
    FileDescriptor file(path, O_RDONLY);
    if (file.is_open() && file.sync() && file.close()) return;
    throw std::system_error(file.error(), std::generic_category(), path);
}

// The standard library does not repeat what a signal interrupted.
std::error_code remove_tree(const fs::path& path) {
    std::error_code failure;
    do {
        fs::remove_all(path, failure);
    } while (failure == std::errc::interrupted);
    return failure;
}

std::string without_slashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::string megabytes(double bytes) {
    return std::to_string(static_cast<long>(std::ceil(bytes / 1e6))) + " MB";
}

}  // namespace

ResultFolder::ResultFolder(std::string path, std::span<const char* const> names, bool force,
                           std::span<const std::string> inputs, Terminal& terminal)
    : path_(without_slashes(std::move(path))),
      unfinished_(path_ + '/' + kUnfinished + '/'),
      names_(names) {
    make();
    take_lock(terminal);
    look_for_results(force);
    require_apart(inputs);
    vort::require_apart(inputs, with_all_below(path_in(path_, kUnfinished)));
    std::error_code failure = remove_unfinished();
    if (!failure && fs::create_directory(unfinished_, failure)) return;
    throw InputError{path_ + ": cannot be written (" + failure.message() +
                     "); a directory of your own was expected"};
}

void ResultFolder::make() {
    std::error_code failure;
    std::vector<std::string> missing;
    for (std::string folder = path_; folder != folder_of(folder) && !fs::exists(folder, failure);
         folder = folder_of(folder)) {
        missing.push_back(folder);
    }
    if (fs::create_directories(path_, failure)) made_ = std::move(missing);
    std::error_code unseen;
    if (fs::is_directory(path_, unseen)) return;
    throw InputError{path_ + ": cannot be made (" + (failure ? failure : unseen).message() +
                     "); a directory for the results was expected"};
}

void ResultFolder::take_lock(Terminal& terminal) {
    lock_ = std::make_unique<DirectoryLock>(path_);
    if (!lock_->held()) {
        throw InputError{path_ + ": another run is at work there; name another directory"};
    }
    if (lock_->error() == 0) return;
    if (lock_->error() == EACCES) {
        throw InputError{path_ + ": cannot be read (" + std::strerror(EACCES) +
                         "); a directory of your own was expected"};
    }
    terminal.say(path_ + ": cannot be locked (" + std::strerror(lock_->error()) +
                 "); a second run there would not be noticed");
}

void ResultFolder::look_for_results(bool force) const {
    for (const char* name : names_) {
        const std::string result = path_in(path_, name);
        std::error_code failure;
        const fs::file_status there = fs::symlink_status(result, failure);
        if (!fs::exists(there)) continue;
        if (fs::is_directory(there)) {
            throw InputError{result +
                             ": is a directory; a place for a file was expected; remove it"};
        }
        if (force) continue;
        throw InputError{result +
                         ": is there already; name another directory, or replace it by --force"};
    }
}

ResultFolder::~ResultFolder() {
    try {
        discard();
        if (complete_) return;
        std::error_code failure;
        for (const std::string& folder : made_) fs::remove(folder, failure);
    } catch (const std::exception&) {
        // No memory to tidy up with: the next run there does it.
    }
}

void ResultFolder::discard() {
    const std::scoped_lock lock(mutex_);
    if (!complete_) remove_unfinished();
}

// Without the slash at its end, a link would not be followed.
std::error_code ResultFolder::remove_unfinished() const {
    return remove_tree(path_in(path_, kUnfinished));
}

void ResultFolder::require_room(double bytes) const {
    struct statvfs disk {};
    if (::statvfs(path_.c_str(), &disk) != 0) return;
    const double room = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
    if (room >= bytes) return;
    throw std::runtime_error(path_ + ": the disk has room for " + megabytes(room) +
                             "; the results need " + megabytes(bytes));
}

std::vector<std::string> ResultFolder::results() const {
    std::vector<std::string> paths;
    for (const char* name : names_) paths.push_back(path_in(path_, name));
    return paths;
}

void ResultFolder::require_apart(std::span<const std::string> inputs) const {
    vort::require_apart(inputs, results());
}

void ResultFolder::publish() {
    const std::scoped_lock lock(mutex_);
    const std::vector<Step> steps = plan();
    FileDescriptor folder(path_, O_RDONLY);
    for (const Step& step : steps) {
        if (step.written) flush(step.from);
    }
    complete_ = true;
    const int error = folder.is_open() ? give_names(steps, folder) : folder.error();
    if (error != 0) {
        throw std::runtime_error(path_ + ": the results could not get their names (" +
                                 std::strerror(error) + "); they are complete in " + unfinished_);
    }
    ::rmdir(unfinished_.c_str());
}

std::vector<ResultFolder::Step> ResultFolder::plan() const {
    std::vector<Step> steps;
    for (const char* name : names_) {
        const std::string written = unfinished_ + name;
        steps.push_back({written, path_in(path_, name), fs::exists(written)});
    }
    return steps;
}

// A single result takes the place of the earlier one at once. Nothing here needs memory, so that it
// is done or undone as a whole. 0, or a value of errno.
int ResultFolder::give_names(std::span<const Step> steps, FileDescriptor& folder) {
    const bool many = steps.size() > 1;
    if (many) {
        for (std::size_t k = steps.size(); k-- > 0;) {
            if (!remove_file(steps[k].to)) return errno;
        }
        if (!folder.sync()) return folder.error();
    }
    for (std::size_t k = 0; k < steps.size(); ++k) {
        const Step& step = steps[k];
        if (!step.written || std::rename(step.from.c_str(), step.to.c_str()) == 0) continue;
        const int error = errno;
        take_names_back(steps.first(k));
        return error;
    }
    if (folder.sync() || !many) return 0;
    take_names_back(steps);
    return folder.error();
}

void ResultFolder::take_names_back(std::span<const Step> steps) {
    for (std::size_t k = steps.size(); k-- > 0;) {
        [[maybe_unused]] const int tried = std::rename(steps[k].to.c_str(), steps[k].from.c_str());
    }
}

}  // namespace vort
