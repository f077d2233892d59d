// Compiled with wider instructions where the build has them for this architecture.
#include "csm/cluster_kernel_body.h"

namespace vort {

template struct ClusterKernel<Instructions::kWide>;

}  // namespace vort
