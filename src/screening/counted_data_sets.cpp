#include "screening/counted_data_sets.h"

#include <algorithm>
#include <array>
#include <bit>

#include "screening/count_kernel.h"
#include "screening/genotype_tile.h"

namespace vort {

namespace {

constexpr int kPackedBits = 32;

}  // namespace

CountedDataSets::Packing::Packing(const TopCounts& counted) : total(counted) {
    const auto width = [](int most) {
        return static_cast<unsigned char>(std::bit_width(static_cast<unsigned>(most)));
    };
    two_from = width(total.one);
    missing_from = static_cast<unsigned char>(two_from + width(total.two));
    size = static_cast<unsigned char>(missing_from + width(total.missing));
}

CountedDataSets::CountedDataSets(char* const* genotypes, int individuals, int markers,
                                 std::span<short* const> phenotypes, std::span<int* const> rankings,
                                 Instructions instructions)
    : markers_(static_cast<std::size_t>(markers)) {
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
        for (int c = 0; c < columns; ++c) {
            const auto& [one, two, missing] = counts[c].count;
            markers_[first + c] = Packing({one, two, missing});
            ready_ = ready_ && markers_[first + c].size <= kPackedBits;
        }
        if (!ready_) return;
        for (std::size_t d = 0; d < cases.size(); ++d) {
            count(tile.column(0), columns, tile.plane_size(), cases[d].data(), counts.data());
            for (int c = 0; c < columns; ++c) {
                const auto& [one, two, missing] = counts[c].count;
                const Packing& packing = markers_[first + c];
                const std::uint64_t packed = static_cast<std::uint64_t>(one) |
                                             static_cast<std::uint64_t>(two) << packing.two_from |
                                             static_cast<std::uint64_t>(missing)
                                                 << packing.missing_from;
                rankings[d][first + c] = static_cast<int>(static_cast<std::uint32_t>(packed));
            }
        }
    }
}

}  // namespace vort
