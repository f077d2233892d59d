// Compiled with wider instructions where the build has them for this architecture.
#include "screening/count_kernel_body.h"

namespace vort {

template struct CountKernel<Instructions::kWide>;

}  // namespace vort
