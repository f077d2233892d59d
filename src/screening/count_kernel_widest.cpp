// Compiled with the widest instructions where the build has them for this architecture.
#include "screening/count_kernel_body.h"

namespace vort {

template struct CountKernel<Instructions::kWidest>;

}  // namespace vort
