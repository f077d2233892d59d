#include "csm/permuted_cells.h"

#include <algorithm>

#include "csm/cell_sum_kernel.h"
#include "numeric/draw_positions.h"

namespace vort {

namespace {

std::vector<unsigned char> labels_of(std::span<const double> yy) {
    std::vector<unsigned char> labels;
    for (const double y : yy) labels.push_back(y > 0 ? 1 : 0);
    return labels;
}

}  // namespace

bool PermutedCells::serves(std::span<const double> yy) {
    if (yy.empty() || yy.size() > LabelLanes::kMostLabels) return false;
    const auto ends = std::minmax_element(yy.begin(), yy.end());
    const double low = *ends.first;
    const double high = *ends.second;
    return low <= 0 && high > 0 &&
           std::all_of(yy.begin(), yy.end(), [=](double y) { return y == low || y == high; });
}

PermutedCells::PermutedCells(const SetCells& cells, std::span<const double> yy, bool with_sums)
    : n_(yy.size()),
      with_sums_(with_sums),
      value_{0, 1},
      cell_count_(static_cast<std::size_t>(cells.ncell) + 1),
      instructions_(best_instructions()),
      labels_(labels_of(yy), instructions_),
      positions_(n_ * kLanes),
      label_(n_),
      sum_(cell_count_.size() * kLanes) {
    if (with_sums) {
        const auto [low, high] = std::minmax_element(yy.begin(), yy.end());
        value_[0] = *low;
        value_[1] = *high;
    }
    for (std::size_t i = 0; i < n_; ++i) {
        const int cell = cells.cell[i + 1];
        if (cell == 0) continue;
        member_.push_back(static_cast<int>(i));
        ++cell_count_[cell];
    }
    by_cell_ = member_;
    std::stable_sort(by_cell_.begin(), by_cell_.end(),
                     [&](int a, int b) { return cells.cell[a + 1] < cells.cell[b + 1]; });
}

void PermutedCells::draw(int orders) {
    draw_phenotypes(orders);
    sum_cells();
}

// Lanes without an order take the first item that is left.
void PermutedCells::draw_phenotypes(int orders) {
    std::fill(positions_.begin() + orders * static_cast<std::ptrdiff_t>(n_), positions_.end(), 0);
    for (int l = 0; l < orders; ++l) {
        draw_positions(static_cast<int>(n_), positions_.data() + l * n_);
    }
    labels_.draw(positions_, label_.data());
}

void PermutedCells::sum_cells() {
    const PermutedPhenotype phenotype{label_.data(), {value_[0], value_[1]}};
    if (with_sums_) {
        const auto mean =
            kernel_for(instructions_, []<Instructions I>() { return CellSumKernel<I>::mean; });
        mean(phenotype, member_.data(), static_cast<int>(member_.size()), mean_);
    }
    const auto sums =
        kernel_for(instructions_, []<Instructions I>() { return CellSumKernel<I>::sums; });
    sums(phenotype, by_cell_.data(), cell_count_.data(), ncell(), mean_, sum_.data());
}

PermutedCellSums PermutedCells::sums(double cases, double controls) const {
    return {ncell(), cell_count_.data(), sum_.data(), mean_, {value_[0], value_[1]}, cases,
            controls};
}

void PermutedCells::count_cases(int l, int* cases) const {
    for (int c = 1; c <= ncell(); ++c) cases[c] = static_cast<int>(sum_[c * kLanes + l]);
}

}  // namespace vort
