// The folder of a command's results.
//
// Results are written into a folder within it, whose name begins with a dot, and renamed when all
// of them are complete, so that whatever bears a final name is whole. Earlier results stay until
// then.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "common/directory_lock.h"

namespace vort {

class ResultFolder {
  public:
    // Makes the folder where there is none and keeps other runs out of it. `names`: all results
    // that the command may have, in the order in which they get their names; where one is there,
    // InputError unless `force`. Also throws where the folder cannot be made or written, or another
    // run is at work in it. `names` is not owned.
    ResultFolder(std::string path, std::span<const char* const> names, bool force);
    // Removes what has not been published, and the folder where it was made for nothing.
    ~ResultFolder();
    ResultFolder(const ResultFolder&) = delete;
    ResultFolder& operator=(const ResultFolder&) = delete;

    const std::string& path() const { return path_; }
    // Where results are written, ending with a slash.
    const std::string& unfinished() const { return unfinished_; }

    // Throws std::runtime_error where so many bytes do not fit on the disk.
    void require_room(double bytes) const;

    // Flushes all that was written, renames it over earlier results and removes what is left of
    // these. The last name of all is gone before and comes last, so that a folder that has it is
    // whole. Throws std::system_error.
    void publish();

    // Removes what is unfinished, from any thread, but not amid publish(); for a process that is
    // about to end.
    void discard();

  private:
    void make();
    void look_for_results(bool force) const;

    std::mutex mutex_;
    std::string path_;
    std::string unfinished_;
    std::span<const char* const> names_;
    bool made_ = false;
    bool published_ = false;
    std::unique_ptr<DirectoryLock> lock_;
};

}  // namespace vort
