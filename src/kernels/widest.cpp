// Compiled with the widest instructions where the build has them for this architecture.
#include "numeric/draw_kernel_body.h"
#include "numeric/label_run_kernel_body.h"

namespace vort {

template struct DrawKernel<Instructions::kWidest>;
template struct LabelRunKernel<Instructions::kWidest>;

}  // namespace vort
