// Compiled with wider instructions where the build has them for this architecture.
#include "csm/cell_sum_kernel_body.h"

namespace vort {

template struct CellSumKernel<Instructions::kWide>;

}  // namespace vort
