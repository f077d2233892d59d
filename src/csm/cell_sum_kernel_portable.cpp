#include "csm/cell_sum_kernel_body.h"

namespace vort {

template struct CellSumKernel<Instructions::kPortable>;

}  // namespace vort
