#include "numeric/chi_square_lanes.h"

#include "numeric/chi_square_kernel.h"
#include "numeric/distributions.h"

namespace vort {

namespace {

// Any point that both expansions deal with.
constexpr double kPadding = 2.0;

}  // namespace

// A whole group of lanes more, for the padding, and one for what is written but not counted.
ChiSquareQueue::Items::Items(std::size_t capacity)
    : a(capacity + kStatisticsAtOnce + 1),
      x(a.size()),
      gln(a.size()),
      tag(a.size()),
      tail(a.size()) {}

ChiSquareQueue::ChiSquareQueue(Instructions instructions, int capacity)
    : instructions_(instructions),
      series_(static_cast<std::size_t>(capacity)),
      fraction_(static_cast<std::size_t>(capacity)),
      log_gamma_{0, gammln(0.5), gammln(1.0)} {}

void ChiSquareQueue::evaluate(Items& items) const {
    std::size_t padded = items.size;
    for (; padded % kStatisticsAtOnce != 0; ++padded) {
        items.a[padded] = 0.5;
        items.x[padded] = kPadding;
        items.gln[padded] = log_gamma_[1];
    }
    const auto expand = kernel_for(instructions_, [series = &items == &series_]<Instructions I>() {
        return series ? ChiSquareKernel<I>::series : ChiSquareKernel<I>::fraction;
    });
    expand(items.a.data(), items.x.data(), items.gln.data(), static_cast<int>(padded),
           items.tail.data());
    for (std::size_t k = 0; k < items.size; ++k) {
        // The plain form says on the console what it thinks of a series that does not converge.
        if (items.tail[k] < 0) items.tail[k] = 1 - gammp(items.a[k], items.x[k]);
    }
}

}  // namespace vort
