// How long a command has still to go.
//
// Data sets are screened, searched and modelled. What a data set costs in a stage is known roughly
// beforehand, from sizes; once some of it is done its pace is measured, and before that the other
// stages' tells how fast the machine is. Stages may take turns: the time between two updates is
// that of the stage which tells of its work at its end. Example: of 100 data sets 10 are screened
// in 1 s, and the rest is expected to take a quarter of that: 9 s + 2.5 s remain.
#pragma once

#include <array>

#include "common/work_meter.h"

namespace vort {

constexpr std::size_t kStages = 3;

// Of a study, and what a data set's stages depend on.
struct RunSize {
    double individuals = 0;
    double markers = 0;
    double best_m = 0;
    double max_retain = 0;
    double threads = 1;
    bool console = false;
};

// What a data set takes in each stage, on a machine that is known, in seconds.
std::array<double, kStages> expected_seconds(const RunSize& size);

// What it takes to go through all genotypes, beside what is done with them.
double pass_seconds(const RunSize& size);

class TimeEstimate {
  public:
    // todo[s]: data sets to be worked on in stage s.
    TimeEstimate(const RunSize& size, const std::array<double, kStages>& todo);

    // At `seconds` since the beginning, `data_sets` of the stage have been worked on.
    void update(Stage stage, double data_sets, double seconds);
    // No more of the stage is to be done.
    void drop(Stage stage);

    // 0 to 1, never falls.
    double done() const { return done_; }
    // At `seconds` since the beginning. Negative while nothing is known.
    double remaining(double seconds) const;
    // That a stage has taken so far.
    double seconds(Stage stage) const { return stages_[static_cast<std::size_t>(stage)].busy; }

  private:
    struct StageTime {
        double expected = 0;  // seconds a data set, on a machine that is known
        double todo = 0;      // data sets
        double worked = 0;
        double busy = 0;  // seconds
    };

    double pace(const StageTime& stage) const;
    double left() const;

    std::array<StageTime, kStages> stages_;
    double updated_ = 0;
    double done_ = 0;
};

}  // namespace vort
