// Compiled with what every processor has.
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

template struct ChiSquareKernel<Instructions::kPortable>;
template struct ClusterKernel<Instructions::kPortable>;
template struct CountKernel<Instructions::kPortable>;
template struct DrawKernel<Instructions::kPortable>;
template struct FiveModelKernel<Instructions::kPortable>;
template struct LabelRunKernel<Instructions::kPortable>;
template struct PairCountKernel<Instructions::kPortable>;
template struct PlaneKernel<Instructions::kPortable>;
template struct SortKernel<Instructions::kPortable>;

}  // namespace vort
