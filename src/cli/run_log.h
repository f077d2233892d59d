// run.log: what was done, with what, on what, and what stood on the terminal.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "cli/checksums.h"

namespace vort {

// How long each stage of a run took.
class Stopwatch {
  public:
    // Ends the stage before.
    void begin(const std::string& stage);
    void end();

    struct Stage {
        std::string name;
        double seconds;
    };
    // The stage that runs is over; it was these.
    void share(const std::vector<Stage>& stages);
    const std::vector<Stage>& stages() const { return stages_; }
    double total() const;

  private:
    using Clock = std::chrono::steady_clock;

    std::vector<Stage> stages_;
    Clock::time_point first_ = Clock::now();
    Clock::time_point began_ = first_;
    bool running_ = false;
};

struct RunLog {
    std::vector<std::string> command;  // the words of the command line
    std::chrono::system_clock::time_point start = std::chrono::system_clock::now();
    int threads = 1;
    std::vector<Checksum> inputs;
    std::vector<Stopwatch::Stage> stages;
    std::string terminal;

    std::string text() const;
};

// "2024-02-29 12:00:00 UTC".
std::string time_text(std::chrono::system_clock::time_point time);
std::string host_name();

// The largest part of the memory that this process has used so far, in megabytes.
double peak_megabytes();

}  // namespace vort
