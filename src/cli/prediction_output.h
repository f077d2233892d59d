// The two files of a prediction: the table, and beside it what it rests on and how well it does.
//
// They are written into a folder beside the table, NAME.vort-unfinished, which is locked, and get
// their names when both are on the disk, the table last: where it is, the other belongs to it.
// Earlier ones stay until then. Unlike ResultFolder nothing else in the directory is kept out, so
// that many predictions may go to one.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "common/diagnostics.h"
#include "common/directory_lock.h"

namespace vort {

class PredictionOutput {
  public:
    // Throws InputError where a file of the name is there, unless `force`, where one of `inputs`
    // would be replaced, or where another run is at work on the same table.
    PredictionOutput(const std::string& table, bool force, std::span<const std::string> inputs);
    // Removes what has not been published.
    ~PredictionOutput();
    PredictionOutput(const PredictionOutput&) = delete;
    PredictionOutput& operator=(const PredictionOutput&) = delete;

    const std::string& table() const { return table_.path; }
    const std::string& summary() const { return summary_.path; }

    // Throws InputError where a file of the prediction would take the place of an input.
    void require_apart(std::span<const std::string> inputs) const;

    // Writes both, and brings them to the disk; what cannot be written is told, and stops the run.
    void write(std::string_view table, std::string_view summary, Diagnostics& diagnostics) const;

    // Gives them their names. Throws std::runtime_error where that fails; they are then left where
    // they were written.
    void publish();

    // Removes what is unfinished, from any thread; for a process that is about to end.
    void discard();

  private:
    struct File {
        std::string path;
        std::string unfinished;
    };

    void require_free(const std::string& path, bool force) const;
    void make_folder();
    void remove_unfinished() const;
    int give_names();

    std::mutex mutex_;
    std::string folder_;  // that the table is in
    std::string unfinished_;
    File table_, summary_;
    bool complete_ = false;
    std::unique_ptr<DirectoryLock> lock_;
};

}  // namespace vort
