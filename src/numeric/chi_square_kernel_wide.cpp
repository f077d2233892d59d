// Compiled with wider instructions where the build has them for this architecture.
#include "numeric/chi_square_kernel.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kWide>;

}  // namespace vort
