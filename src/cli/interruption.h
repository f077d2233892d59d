// SIGINT and SIGTERM while a command is at work.
#pragma once

#include <functional>
#include <thread>

namespace vort {

// As long as it lives, a thread of its own waits for the two signals: it runs `clean_up` and ends
// the process with the status 130 or 143. To be made before other threads are, which inherit that
// the signals are blocked. A signal that is ignored stays ignored.
class Interruption {
  public:
    explicit Interruption(std::function<void()> clean_up);
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

  private:
    std::function<void()> clean_up_;
    std::thread waiter_;
};

}  // namespace vort
