// Compiled with the widest instructions where the build has them for this architecture.
#include "csm/pair_count_kernel_body.h"

namespace vort {

template struct PairCountKernel<Instructions::kWidest>;

}  // namespace vort
