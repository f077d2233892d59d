// One run at a time in a directory.
#pragma once

#include <string>

#include "common/file_descriptor.h"

namespace vort {

// Held as long as the object lives, by the directory itself, so that no file is left whatever
// happens to the process.
class DirectoryLock {
  public:
    // held() is false where another process has the lock. A directory that cannot be locked at all,
    // on a file system without locks, counts as held; error() says why, and is 0 elsewhere.
    explicit DirectoryLock(const std::string& path);

    bool held() const { return held_; }
    int error() const { return error_; }

  private:
    FileDescriptor directory_;
    int error_;
    bool held_ = true;
};

}  // namespace vort
