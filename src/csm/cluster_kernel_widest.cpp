// Compiled with the widest instructions where the build has them for this architecture.
#include "csm/cluster_kernel_body.h"

namespace vort {

template struct ClusterKernel<Instructions::kWidest>;

}  // namespace vort
