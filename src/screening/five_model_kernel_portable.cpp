#include "screening/five_model_kernel_body.h"

namespace vort {

template struct FiveModelKernel<Instructions::kPortable>;

}  // namespace vort
