// Compiled with the widest instructions where the build has them for this architecture.
#include "csm/cluster_kernel_body.h"
#include "csm/pair_count_kernel_body.h"
#include "genotypes/plane_kernel_body.h"
#include "numeric/chi_square_kernel_body.h"
#include "numeric/draw_kernel_body.h"
#include "numeric/label_run_kernel_body.h"
#include "screening/count_kernel_body.h"
#include "screening/five_model_kernel_body.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kWidest>;
template struct ClusterKernel<Instructions::kWidest>;
template struct CountKernel<Instructions::kWidest>;
template struct DrawKernel<Instructions::kWidest>;
template struct FiveModelKernel<Instructions::kWidest>;
template struct LabelRunKernel<Instructions::kWidest>;
template struct PairCountKernel<Instructions::kWidest>;
template struct PlaneKernel<Instructions::kWidest>;

}  // namespace vort
