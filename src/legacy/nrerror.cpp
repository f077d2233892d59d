#include "legacy/nrerror.h"

#include <cstdlib>
#include <iostream>

namespace vort {

void nrerror(const char* text) {
    std::cerr << "Numerical Recipes run-time error...\n"
              << text << "\n...now exiting to system...\n";
    std::exit(1);
}

}  // namespace vort
