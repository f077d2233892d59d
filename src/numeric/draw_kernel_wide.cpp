// Compiled with wider instructions where the build has them for this architecture.
#include "numeric/draw_kernel_body.h"

namespace vort {

template struct DrawKernel<Instructions::kWide>;

}  // namespace vort
