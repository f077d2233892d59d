#include "screening/count_kernel_body.h"

namespace vort {

template struct CountKernel<Instructions::kPortable>;

}  // namespace vort
