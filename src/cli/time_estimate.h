// How long a run has still to go.
//
// A run screens all data sets and then models them. What a data set costs in either stage is known
// roughly beforehand, from sizes; once some of it is done its pace is measured, and until the
// second stage has begun the first one's tells how fast the machine is. So an estimate stands from
// the first stretch of markers on. Example: of 100 data sets 10 are screened in 1 s, and models are
// expected to take a quarter of that: 9 s + 2.5 s remain.
#pragma once

#include <array>

#include "vort/analysis.h"

namespace vort {

struct RunSize {
    double individuals = 0;
    double markers = 0;
    double data_sets = 1;
    double best_m = 0;
    double max_retain = 0;
    double threads = 1;
    bool console = false;
};

class TimeEstimate {
  public:
    explicit TimeEstimate(const RunSize& size);

    // At `seconds` since the beginning, `data_sets` of the stage have been worked on.
    void update(Stage stage, double data_sets, double seconds);

    // 0 to 1, never falls.
    double done() const { return done_; }
    // At `seconds` since the beginning. Negative while nothing is known.
    double remaining(double seconds) const;
    // When the second stage began; negative where it did not.
    double models_began() const { return stages_[1].began; }

  private:
    struct StageTime {
        double expected = 0;  // seconds a data set, on a machine that is known
        double worked = 0;    // data sets
        double began = -1;    // at so many seconds
        double last = 0;
    };

    double pace(const StageTime& stage) const;
    double left() const;

    double data_sets_;
    std::array<StageTime, 2> stages_;
    double updated_ = 0;
    double done_ = 0;
};

}  // namespace vort
