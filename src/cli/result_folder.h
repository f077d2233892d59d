// The folder of a command's results.
//
// Results are written into a folder within it, whose name begins with a dot, and renamed when all
// of them are complete and on the disk. Earlier results stay until then, and go before the first
// new one has its name. So whatever bears a final name is whole, and never beside one of another
// run, whenever the process is killed.
#pragma once

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "cli/terminal.h"
#include "common/directory_lock.h"

namespace vort {

class ResultFolder {
  public:
    // Makes the folder where there is none and keeps other runs out of it. `names`: all results
    // that the command may have, in the order in which they get their names; where one is there,
    // InputError unless `force`. Also throws where the folder cannot be made or written, or another
    // run is at work in it, or where an input is one of the results or lies among what an earlier
    // run has not finished. `names` is not owned; the terminal hears of a folder without a lock.
    ResultFolder(std::string path, std::span<const char* const> names, bool force,
                 std::span<const std::string> inputs, Terminal& terminal);
    // Removes what has not been published, and the folders that were made for nothing.
    ~ResultFolder();
    ResultFolder(const ResultFolder&) = delete;
    ResultFolder& operator=(const ResultFolder&) = delete;

    const std::string& path() const { return path_; }
    // Where results are written, ending with a slash.
    const std::string& unfinished() const { return unfinished_; }

    // Throws std::runtime_error where so many bytes do not fit on the disk.
    void require_room(double bytes) const;
    // Throws InputError where a result would take the place of an input.
    void require_apart(std::span<const std::string> inputs) const;

    // Flushes all that was written, removes earlier results and renames what was written. The last
    // name of all goes first and comes last, so that a folder that has it is whole. Throws
    // std::runtime_error where that fails amid the renaming: all results are then left where they
    // were written, under none of their names.
    void publish();

    // Removes what is unfinished, from any thread, but not amid publish() or what it left; for a
    // process that is about to end.
    void discard();

  private:
    struct Step {
        std::string from, to;
        bool written;
    };

    void make();
    void take_lock(Terminal& terminal);
    std::error_code remove_unfinished() const;
    void look_for_results(bool force) const;
    std::vector<std::string> results() const;
    std::vector<Step> plan() const;
    static int give_names(std::span<const Step> steps, FileDescriptor& folder);
    static void take_names_back(std::span<const Step> steps);

    std::mutex mutex_;
    std::string path_;
    std::string unfinished_;
    std::span<const char* const> names_;
    std::vector<std::string> made_;  // folders, inmost first
    bool complete_ = false;          // all is on the disk
    std::unique_ptr<DirectoryLock> lock_;
};

}  // namespace vort
