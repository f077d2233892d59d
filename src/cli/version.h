#pragma once

namespace vort {

// "1.1.0".
extern const char* const kVersion;

}  // namespace vort
