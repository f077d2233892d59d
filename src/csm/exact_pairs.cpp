#include "csm/exact_pairs.h"

#include <algorithm>
#include <array>

#include "common/parallel.h"
#include "csm/quick_pvalue.h"

namespace vort {

namespace {

constexpr int kWordBits = 64;

// Genotypes 0, 1, 2 and missing in two bits: codes 0, 1, 2 and 3.
struct TwoBits {
    std::uint64_t low;
    std::uint64_t high;
    unsigned at(int bit) const {
        return static_cast<unsigned>((low >> bit & 1) | (high >> bit & 1) << 1);
    }
};

TwoBits two_bits(const MarkerPlanes::Planes& planes, std::size_t w) {
    return {planes.one[w] | planes.missing[w], planes.two[w] | planes.missing[w]};
}

}  // namespace

ExactPairs::ExactPairs(const PairSearchInput& input, std::span<const PairCode> codes,
                       const PairBounds& bounds)
    : input_(input), codes_(codes), bounds_(bounds), numbers_(input.markers.markers()) {}

double ExactPairs::pvalue(int pair) const {
    const PvalueBounds bounds = bounds_.of_code(codes_[static_cast<std::size_t>(pair) - 1]);
    return bounds.known() ? bounds.low : sum(pair);
}

std::vector<double> ExactPairs::pvalues(std::span<const int> pairs, int threads) const {
    constexpr std::size_t kAtOnce = 64;
    std::vector<double> values(pairs.size());
    for_each_index(threads, (pairs.size() + kAtOnce - 1) / kAtOnce, [&](std::size_t part) {
        const std::size_t end = std::min(pairs.size(), (part + 1) * kAtOnce);
        for (std::size_t k = part * kAtOnce; k < end; ++k) values[k] = pvalue(pairs[k]);
    });
    return values;
}

double ExactPairs::sum(int pair) const {
    ++computed_;
    const auto [first, second] = numbers_.markers_of(pair);
    const MarkerPlanes::Planes a = input_.markers.planes(first);
    const MarkerPlanes::Planes b = input_.markers.planes(second);
    const int n = input_.markers.individuals();
    double sums[4][4] = {};
    int counts[4][4] = {};
    for (int i = 0; i < n; i += kWordBits) {
        const auto w = static_cast<std::size_t>(i / kWordBits);
        const TwoBits rows = two_bits(a, w);
        const TwoBits columns = two_bits(b, w);
        const int end = std::min(kWordBits, n - i);
        for (int bit = 0; bit < end; ++bit) {
            const unsigned row = rows.at(bit);
            const unsigned column = columns.at(bit);
            sums[row][column] += input_.phenotype[i + bit];
            ++counts[row][column];
        }
    }
    std::array<double, 9> cell_sum{};
    std::array<int, 9> cell_count{};
    for (std::size_t cell = 0; cell < cell_sum.size(); ++cell) {
        cell_sum[cell] = sums[cell / 3][cell % 3];
        cell_count[cell] = counts[cell / 3][cell % 3];
    }
    Transcript nobody(false);
    return quick_pvalue(cell_sum, cell_count, n, input_.sigma, nobody);
}

}  // namespace vort
