// The markers of a study in binary files: CHR ID CM BP A1 A2.
#pragma once

#include <string>
#include <vector>

#include "genotypes/marker_info.h"

namespace vort {

// In the order of the file; a chromosome other than 1 to 26 is 0. Throws InputError where the file
// cannot be used.
std::vector<MarkerInfo> read_bim(const std::string& path);

}  // namespace vort
