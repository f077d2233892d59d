#include "numeric/chi_square_lanes.h"

#include "numeric/chi_square_kernel.h"
#include "numeric/distributions.h"

namespace vort {

namespace {

const double kLogGamma[3] = {0, gammln(0.5), gammln(1.0)};  // of df / 2

}  // namespace

ChiSquareQueue::ChiSquareQueue(Instructions instructions) : instructions_(instructions) {}

void ChiSquareQueue::add(int df, double statistic, int tag) {
    const double a = df / 2.0;
    const double x = statistic / 2.0;
    Items& items = x < a + 1.0 ? series_ : fraction_;
    items.a.push_back(a);
    items.x.push_back(x);
    items.gln.push_back(kLogGamma[df]);
    items.tag.push_back(tag);
}

void ChiSquareQueue::finish(Items& items, double padding,
                            void (*evaluate)(const double*, const double*, const double*, int,
                                             double*)) {
    const std::size_t size = items.tag.size();
    while (items.a.size() % kStatisticsAtOnce != 0) {
        items.a.push_back(0.5);
        items.x.push_back(padding);
        items.gln.push_back(kLogGamma[1]);
    }
    tail_.resize(items.a.size());
    evaluate(items.a.data(), items.x.data(), items.gln.data(), static_cast<int>(items.a.size()),
             tail_.data());
    for (std::size_t k = 0; k < size; ++k) {
        // The plain form says on the console what it thinks of a series that does not converge.
        const double pvalue = tail_[k] < 0 ? 1 - gammp(items.a[k], items.x[k]) : tail_[k];
        results_.push_back({items.tag[k], pvalue});
    }
    items.a.clear();
    items.x.clear();
    items.gln.clear();
    items.tag.clear();
}

const std::vector<ChiSquareQueue::Result>& ChiSquareQueue::take() {
    using Portable = ChiSquareKernel<Instructions::kPortable>;
    using Wide = ChiSquareKernel<Instructions::kWide>;
    const bool wide = instructions_ == Instructions::kWide;
    results_.clear();
    finish(series_, 1.0, wide ? Wide::series : Portable::series);
    finish(fraction_, 2.0, wide ? Wide::fraction : Portable::fraction);
    return results_;
}

}  // namespace vort
