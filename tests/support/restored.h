// Global variables that one test changes and gives back.
#pragma once

#include <tuple>

namespace vort::testing {

// Remembers the variables' values and restores them at its end.
template <typename... T>
class Restored {
  public:
    explicit Restored(T&... variables) : variables_(variables...), before_(variables...) {}
    ~Restored() { variables_ = before_; }
    Restored(const Restored&) = delete;

  private:
    std::tuple<T&...> variables_;
    std::tuple<T...> before_;
};

}  // namespace vort::testing
