#include "numeric/draw_kernel_body.h"

namespace vort {

template struct DrawKernel<Instructions::kPortable>;

}  // namespace vort
