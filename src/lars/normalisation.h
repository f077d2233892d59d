// Columns and response, made ready for the path.
#pragma once

#include <cstddef>
#include <span>

#include "common/transcript.h"

namespace vort {

// Gives column `j` (0-based) mean 0 and length 1 in place. False for a constant one, which becomes
// all zeros.
bool normalise_column(std::size_t j, std::span<double> column, Transcript& transcript);

// Subtracts the mean in place.
void centre_response(std::span<double> response, Transcript& transcript);

}  // namespace vort
