#include "numeric/chi_square_lanes.h"

#include "numeric/distributions.h"

namespace vort {

namespace {

// Any point that both expansions deal with.
constexpr double kPadding = 2.0;

}  // namespace

ChiSquareQueue::ChiSquareQueue(Instructions instructions, int capacity)
    : instructions_(instructions) {
    // A group more for those that go on waiting, one for the padding, and one item for what is
    // written but not counted.
    const std::size_t room = static_cast<std::size_t>(capacity) + 2 * kGroup + 1;
    for (std::size_t l = 0; l < lines_.size(); ++l) {
        const double a = l < 2 ? 0.5 : 1.0;
        lines_[l] = {a,
                     gammln(a),
                     l % 2 != 0,
                     0,
                     std::vector<double>(room),
                     std::vector<int>(room),
                     std::vector<double>(room)};
    }
}

// The first `size` of a line, which are all of it where they are not a multiple of a group.
void ChiSquareQueue::evaluate(Line& line, std::size_t size) const {
    const std::size_t padded = (size + kGroup - 1) / kGroup * kGroup;
    std::fill(line.x.begin() + size, line.x.begin() + padded, kPadding);
    const auto expand = kernel_for(instructions_, [series = line.in_series]<Instructions I>() {
        return series ? ChiSquareKernel<I>::series : ChiSquareKernel<I>::fraction;
    });
    expand(line.a, line.gln, line.x.data(), static_cast<int>(padded), line.tail.data());
    for (std::size_t k = 0; k < size; ++k) {
        // What does not converge in lanes is worked out in the plain form.
        if (line.tail[k] < 0) line.tail[k] = 1 - lower_tail_gamma(line.a, line.x[k]).value;
    }
}

}  // namespace vort
