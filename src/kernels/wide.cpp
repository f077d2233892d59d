// Compiled with wider instructions where the build has them for this architecture.
#include "csm/cluster_kernel_body.h"
#include "csm/pair_count_kernel_body.h"
#include "genotypes/plane_kernel_body.h"
#include "numeric/chi_square_kernel_body.h"
#include "numeric/draw_kernel_body.h"
#include "numeric/label_run_kernel_body.h"
#include "numeric/sort_kernel_body.h"
#include "screening/count_kernel_body.h"
#include "screening/five_model_kernel_body.h"

namespace vort {

template struct ChiSquareKernel<Instructions::kWide>;
template struct ClusterKernel<Instructions::kWide>;
template struct CountKernel<Instructions::kWide>;
template struct DrawKernel<Instructions::kWide>;
template struct FiveModelKernel<Instructions::kWide>;
template struct LabelRunKernel<Instructions::kWide>;
template struct PairCountKernel<Instructions::kWide>;
template struct PlaneKernel<Instructions::kWide>;
template struct SortKernel<Instructions::kWide>;

}  // namespace vort
