// Compiled with wider instructions where the build has them for this architecture.
#include "genotypes/plane_kernel_body.h"

namespace vort {

template struct PlaneKernel<Instructions::kWide>;

}  // namespace vort
