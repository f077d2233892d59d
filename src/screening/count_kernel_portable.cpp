#include "screening/count_kernel.h"

namespace vort {

template struct CountKernel<Instructions::kPortable>;

}  // namespace vort
