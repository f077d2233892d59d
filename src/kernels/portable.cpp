// The kernels for every processor of the architecture.
#include "genotypes/plane_kernel_body.h"

namespace vort {

template struct PlaneKernel<Instructions::kPortable>;

}  // namespace vort
