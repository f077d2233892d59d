// How far a stage has come, for whoever shows it to a user.
#pragma once

#include <functional>
#include <mutex>
#include <utility>

namespace vort {

// What a data set goes through.
enum class Stage { kScreen, kSearch, kModel };

// Gets how many data sets have been worked on in a stage, parts included. From any thread, one at a
// time for each stage.
using TellWork = std::function<void(Stage stage, double data_sets)>;

// Adds up the work done by all threads, in data sets, and tells the sum after each addition. Where
// nobody listens nothing is done.
class WorkMeter {
  public:
    WorkMeter(Stage stage, TellWork told) : stage_(stage), told_(std::move(told)) {}

    void add(double data_sets) {
        if (!told_) return;
        const std::scoped_lock lock(mutex_);
        done_ += data_sets;
        told_(stage_, done_);
    }

  private:
    Stage stage_;
    TellWork told_;
    std::mutex mutex_;
    double done_ = 0;
};

}  // namespace vort
