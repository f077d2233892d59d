#include "screening/counted_data_sets.h"

#include <algorithm>
#include <array>
#include <bit>

#include "screening/five_model_kernel.h"
#include "screening/genotype_tile.h"

namespace vort {

namespace {

constexpr int kPackedBits = 31;

int width(int most) {
    return std::bit_width(static_cast<unsigned>(most));
}

std::size_t whole_blocks(int markers) {
    return (static_cast<std::size_t>(markers) + kMarkerBlock - 1) / kMarkerBlock * kMarkerBlock;
}

}  // namespace

// Marks the counts as not ready where they need too many bits.
void CountedDataSets::pack_totals(int j, const Count& total) {
    const auto& [one, two, missing] = total;
    const int two_from = width(one);
    const int missing_from = two_from + width(two);
    ready_ = ready_ && missing_from + width(missing) <= kPackedBits;
    one_[j] = one;
    two_[j] = two;
    missing_[j] = missing;
    two_from_[j] = static_cast<unsigned char>(two_from);
    missing_from_[j] = static_cast<unsigned char>(missing_from);
}

int CountedDataSets::packed(int j, const Count& cases) const {
    const auto& [one, two, missing] = cases;
    return one | two << two_from_[j] | missing << missing_from_[j];
}

CountedDataSets::CountedDataSets(char* const* genotypes, int individuals, int markers,
                                 std::span<short* const> phenotypes, std::span<int* const> rankings,
                                 Instructions instructions)
    : one_(whole_blocks(markers)),
      two_(one_.size()),
      missing_(one_.size()),
      two_from_(one_.size()),
      missing_from_(one_.size()) {
    const auto count =
        kernel_for(instructions, []<Instructions I>() { return CountKernel<I>::count; });
    GenotypeTile tile(individuals);
    const std::vector<unsigned char> everybody(tile.plane_size(), 0xFF);
    std::vector<std::vector<unsigned char>> cases;
    for (const short* row : phenotypes) {
        cases.push_back(case_plane(row, individuals, tile.plane_size()));
    }
    std::array<PlaneCounts, GenotypeTile::kColumns> counts{};
    for (int first = 0; first < markers; first += GenotypeTile::kColumns) {
        const int columns = std::min(GenotypeTile::kColumns, markers - first);
        tile.load(genotypes, first, columns);
        count(tile.column(0), columns, tile.plane_size(), everybody.data(), counts.data());
        for (int c = 0; c < columns; ++c) pack_totals(first + c, counts[c].count);
        if (!ready_) return;
        for (std::size_t d = 0; d < cases.size(); ++d) {
            count(tile.column(0), columns, tile.plane_size(), cases[d].data(), counts.data());
            for (int c = 0; c < columns; ++c) {
                rankings[d][first + c] = packed(first + c, counts[c].count);
            }
        }
    }
}

}  // namespace vort
