#include "numeric/chi_square_kernel.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kPortable>;

}  // namespace vort
