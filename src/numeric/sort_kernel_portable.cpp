#include "numeric/sort_kernel_body.h"

namespace vort {

template struct SortKernel<Instructions::kPortable>;

}  // namespace vort
