// Compiled with the widest instructions where the build has them for this architecture.
#include "csm/cell_sum_kernel_body.h"

namespace vort {

template struct CellSumKernel<Instructions::kWidest>;

}  // namespace vort
