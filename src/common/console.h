// Standard output, written in large pieces as they come.
#pragma once

#include <string_view>

#include "common/diagnostics.h"

namespace vort {

class StandardOutput {
  public:
    // `diagnostics` is not owned.
    explicit StandardOutput(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

    // Writes at once. What a broken pipe or a full disk swallows is told once, and does not stop
    // the analysis.
    void write(std::string_view text);

  private:
    Diagnostics& diagnostics_;
    bool failed_ = false;
};

}  // namespace vort
