#include "common/directory_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

namespace vort {

DirectoryLock::DirectoryLock(const std::string& path)
    : directory_(path, O_RDONLY | O_DIRECTORY), error_(directory_.error()) {
    if (!directory_.is_open()) return;
    while (::flock(directory_.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        held_ = errno != EWOULDBLOCK;
        error_ = held_ ? errno : 0;
        return;
    }
}

}  // namespace vort
