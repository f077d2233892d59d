#include "numeric/small_clusters.h"

#include <algorithm>

namespace vort {

namespace {

constexpr int kAtOnce = 256;
static_assert(kAtOnce <= Generator::kStretch);

// The next numbers.
void draw_numbers(Generator& generator, int count, double* out) {
    static const Generator::Skip whole(kAtOnce);
    const auto from = generator.stretch();
    if (!from) {
        for (int d = 0; d < count; ++d) out[d] = generator.next();
        return;
    }
    for (int d = 0; d < count; ++d) {
        const double sum = from->x[d] + from->y[d] + from->z[d];
        out[d] = sum - static_cast<int>(sum);
    }
    generator.skip(whole);  // the last numbers are not gone on from
}

// Takes bit k out, which is returned.
std::uint64_t take_bit(std::uint64_t& word, int k) {
    const std::uint64_t below = (std::uint64_t{1} << k) - 1;
    const std::uint64_t bit = word >> k & 1;
    word = (word & below) | (word >> 1 & ~below);
    return bit;
}

}  // namespace

void SmallClusters::add(std::span<const unsigned char> labels) {
    Cluster cluster{0, static_cast<int>(labels.size())};
    for (std::size_t k = 0; k < labels.size(); ++k) {
        cluster.labels |= std::uint64_t{labels[k] != 0} << k;
    }
    clusters_.push_back(cluster);
    draws_ += cluster.members;
}

void SmallClusters::draw(Generator start, std::uint64_t* plane, std::size_t first) const {
    double number[kAtOnce];
    auto next = clusters_.begin();
    Cluster left{0, 0};
    for (int d = 0; d < draws_; ++d) {
        if (d % kAtOnce == 0) draw_numbers(start, std::min(kAtOnce, draws_ - d), number);
        if (left.members == 0) left = *next++;
        const int k = std::max(static_cast<int>(left.members * number[d % kAtOnce]), 0);
        --left.members;
        const std::size_t at = first + static_cast<std::size_t>(d);
        plane[at / 64] |= take_bit(left.labels, k) << at % 64;
    }
}

}  // namespace vort
