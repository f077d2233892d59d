// One run at a time in a directory.
#pragma once

#include <string>

namespace vort {

// Held as long as the object lives, by the directory itself, so that no file is left whatever
// happens to the process.
class DirectoryLock {
  public:
    // held() is false where another process has the lock. A directory that cannot be locked at all,
    // on a file system without locks, counts as held.
    explicit DirectoryLock(const std::string& path);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

    bool held() const { return held_; }

  private:
    int directory_;
    bool held_;
};

}  // namespace vort
