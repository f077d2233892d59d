// Model selection as docs/method.md (section 7) defines it.
#pragma once

#include <vector>

#include "lars/selector.h"

namespace vort::fuzz {

// As select_model(), by the plain path.
Selection select_plainly(const std::vector<double>& response,
                         std::vector<std::vector<double>> columns, Transcript& console);

}  // namespace vort::fuzz
