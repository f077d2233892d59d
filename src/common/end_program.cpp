#include "common/end_program.h"

#include <cstdlib>

namespace vort {

void end_program(int status) {
    // The console and the diagnostics are written out by handlers that run at exit, so that an end
    // inside the numerical toolkit, which knows neither, loses nothing either.
    std::exit(status);
}

}  // namespace vort
