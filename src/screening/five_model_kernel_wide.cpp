// Compiled with wider instructions where the build has them for this architecture.
#include "screening/five_model_kernel_body.h"

namespace vort {

template struct FiveModelKernel<Instructions::kWide>;

}  // namespace vort
