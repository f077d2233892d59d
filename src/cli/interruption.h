// SIGINT, SIGTERM and SIGHUP while a command is at work.
#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace vort {

// As long as it lives, a thread of its own waits for the signals: it runs `clean_up` and ends the
// process with the status 128 plus the signal's number, 130, 143 or 129. To be made before other
// threads are, which inherit that the signals are blocked. A signal that is ignored stays ignored.
class Interruption {
  public:
    explicit Interruption(std::function<void()> clean_up);
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

  private:
    std::function<void()> clean_up_;
    std::atomic<bool> over_{false};
    std::thread waiter_;
};

}  // namespace vort
