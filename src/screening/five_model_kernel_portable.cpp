#include "screening/five_model_kernel.h"

namespace vort {

template struct FiveModelKernel<Instructions::kPortable>;

}  // namespace vort
