// Compiled with what every processor has.
#include "numeric/draw_kernel_body.h"
#include "numeric/label_run_kernel_body.h"

namespace vort {

template struct DrawKernel<Instructions::kPortable>;
template struct LabelRunKernel<Instructions::kPortable>;

}  // namespace vort
