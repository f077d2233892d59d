// Collects what the code under test prints on std::cout.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace vort::testing {

class ConsoleCapture {
  public:
    ConsoleCapture() : before_(std::cout.rdbuf(text_.rdbuf())) {}
    ~ConsoleCapture() { std::cout.rdbuf(before_); }
    ConsoleCapture(const ConsoleCapture&) = delete;

    std::string text() const { return text_.str(); }

  private:
    std::ostringstream text_;
    std::streambuf* before_;
};

}  // namespace vort::testing
