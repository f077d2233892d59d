// Compiled for every processor.
#include "csm/pair_count_kernel_body.h"

namespace vort {

template struct PairCountKernel<Instructions::kPortable>;

}  // namespace vort
