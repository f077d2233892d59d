// Tells how far a run is: on a terminal a line with the stage, a bar, data sets done, elapsed and
// remaining time; elsewhere a plain line for every tenth of the way, at most one a second.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "cli/terminal.h"
#include "cli/time_estimate.h"

namespace vort {

// Data sets of each stage.
using StageCounts = std::array<int, kStages>;

class Progress {
  public:
    // `todo`: data sets still to be worked on in each stage, of `data_sets` in all. The terminal is
    // not owned.
    Progress(const RunSize& size, int data_sets, const StageCounts& todo, Terminal& terminal,
             bool quiet);
    ~Progress() { finish(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Hears of a task's work, from any thread.
    TellWork tell();
    // Another task begins, whose counts begin at 0.
    void next_task();
    // No more of a stage is to be done.
    void drop(Stage stage);

    // Takes the line away; nothing is shown afterwards.
    void finish();

    // That a stage has taken.
    double seconds(Stage stage) const;

  private:
    using Clock = std::chrono::steady_clock;

    void working(Stage stage, double data_sets);
    double seconds() const;
    void tick(const std::stop_token& stop);
    void tell_tenth();
    int stage_done() const;
    std::string bar_line() const;

    Terminal& terminal_;
    bool quiet_;
    int data_sets_;
    StageCounts before_;  // data sets that need no work
    Clock::time_point start_ = Clock::now();

    mutable std::mutex mutex_;
    std::condition_variable_any finished_;
    TimeEstimate estimate_;
    Stage stage_ = Stage::kScreen;
    std::array<double, kStages> of_tasks_{};  // that are over
    std::array<double, kStages> of_task_{};   // at work
    int tenths_told_ = 0;
    double told_at_ = 0;  // a run shorter than a line is not told
    std::jthread ticker_;
};

// "0:07", "1:02:03".
std::string clock_text(double seconds);

}  // namespace vort
