#include "csm/cluster_kernel_body.h"

namespace vort {

template struct ClusterKernel<Instructions::kPortable>;

}  // namespace vort
