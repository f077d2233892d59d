#include "cli/version.h"

namespace vort {

const char* const kVersion = VORT_VERSION;

}  // namespace vort
