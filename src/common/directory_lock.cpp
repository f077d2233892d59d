#include "common/directory_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

namespace vort {

DirectoryLock::DirectoryLock(const std::string& path)
    : directory_(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      held_(directory_ < 0 || ::flock(directory_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
}

DirectoryLock::~DirectoryLock() {
    if (directory_ >= 0) ::close(directory_);
}

}  // namespace vort
