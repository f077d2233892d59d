// Compiled with the widest instructions where the build has them for this architecture.
#include "numeric/chi_square_kernel_body.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kWidest>;

}  // namespace vort
