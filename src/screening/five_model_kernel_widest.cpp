// Compiled with the widest instructions where the build has them for this architecture.
#include "screening/five_model_kernel_body.h"

namespace vort {

template struct FiveModelKernel<Instructions::kWidest>;

}  // namespace vort
