// How far a stage has come, for whoever shows it to a user.
#pragma once

#include <functional>
#include <mutex>

namespace vort {

// Adds up the work done by all threads, in data sets, and tells the sum after each addition. Where
// nobody listens nothing is done.
class WorkMeter {
  public:
    // `told` is called from any thread, one at a time.
    explicit WorkMeter(std::function<void(double data_sets)> told) : told_(std::move(told)) {}

    void add(double data_sets) {
        if (!told_) return;
        const std::scoped_lock lock(mutex_);
        done_ += data_sets;
        told_(done_);
    }

  private:
    std::function<void(double)> told_;
    std::mutex mutex_;
    double done_ = 0;
};

}  // namespace vort
