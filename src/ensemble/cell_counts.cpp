#include "ensemble/cell_counts.h"

namespace vort {

std::vector<CellCount> count_cells(const Genotypes& genotypes, std::span<const short> phenotypes,
                                   const BaseLearner& learner, std::span<const int> columns) {
    const auto codes = [&](int l) {
        std::vector<signed char> all(static_cast<std::size_t>(genotypes.individuals()));
        if (l < learner.markers) genotypes.unpack(columns[learner.marker[l] - 1], all.data());
        return all;
    };
    const bool pair = learner.markers == 2;
    const std::vector<signed char> first = codes(0);
    const std::vector<signed char> second = codes(1);
    std::vector<CellCount> cells(static_cast<std::size_t>(learner.cell_count()));
    for (std::size_t i = 0; i < phenotypes.size(); ++i) {
        if (first[i] < 0 || second[i] < 0) continue;
        CellCount& cell = cells[pair ? 3 * first[i] + second[i] : first[i]];
        ++(phenotypes[i] > 0 ? cell.cases : cell.controls);
    }
    return cells;
}

}  // namespace vort
