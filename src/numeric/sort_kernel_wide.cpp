// Compiled with wider instructions where the build has them for this architecture.
#include "numeric/sort_kernel_body.h"

namespace vort {

template struct SortKernel<Instructions::kWide>;

}  // namespace vort
