#include "numeric/chi_square_kernel_body.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kPortable>;

}  // namespace vort
