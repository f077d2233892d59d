// Who works on a task, for everybody who asks.
#pragma once

#include <optional>
#include <string>

#include "common/file_descriptor.h"

namespace vort {

// A file beside the task's part, locked while the process lives and gone when it is done. One that
// is there without a lock was left by a process that was killed.
class TaskMark {
  public:
    // Throws InputError where another process is at work on the task.
    explicit TaskMark(std::string path);
    ~TaskMark();
    TaskMark(const TaskMark&) = delete;
    TaskMark& operator=(const TaskMark&) = delete;

    struct Worker {
        std::string text;  // "since 2024-02-29 12:00:00 UTC, process 17 on node3"
        bool at_work;      // false where it was killed
    };
    // Nothing where there is no mark.
    static std::optional<Worker> read(const std::string& path);

  private:
    std::string path_;
    FileDescriptor file_;
};

}  // namespace vort
