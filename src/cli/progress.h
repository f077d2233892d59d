// Tells how far a run is: on a terminal a line with the stage, a bar, data sets done, elapsed and
// remaining time; elsewhere a plain line for every tenth of the way, at most one a second.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "cli/terminal.h"
#include "cli/time_estimate.h"
#include "vort/analysis.h"

namespace vort {

class Progress : public Observer {
  public:
    // `next` also gets what this observer is told. Neither is owned.
    Progress(const RunSize& size, Terminal& terminal, bool quiet, Observer& next);
    ~Progress() override { finish(); }

    void screened(const ScreenedView& view) override;
    void modelled(const ModelledView& view) override;
    void working(Stage stage, double data_sets) override;

    // Takes the line away; nothing is shown afterwards.
    void finish();

    // Seconds from the beginning to that of the models; negative where there were none.
    double models_began() const;

  private:
    using Clock = std::chrono::steady_clock;

    double seconds() const;
    void tick(const std::stop_token& stop);
    void tell_tenth();
    std::string bar_line() const;

    Terminal& terminal_;
    bool quiet_;
    Observer& next_;
    int data_sets_;
    Clock::time_point start_ = Clock::now();

    mutable std::mutex mutex_;
    std::condition_variable_any finished_;
    TimeEstimate estimate_;
    Stage stage_ = Stage::kScreen;
    int stage_done_ = 0;
    int tenths_told_ = 0;
    double told_at_ = 0;  // a run shorter than a line is not told
    std::jthread ticker_;
};

// "0:07", "1:02:03".
std::string clock_text(double seconds);

}  // namespace vort
