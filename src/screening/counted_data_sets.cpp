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

CountedDataSets::Widths CountedDataSets::widths_of(const TopCounts& total) {
    const auto width = [](int most) {
        return static_cast<int>(std::bit_width(static_cast<unsigned>(most)));
    };
    return {width(total.one), width(total.two), width(total.missing)};
}

TopCounts CountedDataSets::cases(int j, int packed) const {
    const Widths width = widths_of(totals_[j]);
    const std::uint64_t bits = static_cast<std::uint32_t>(packed);
    const auto field = [bits](int from, int size) {
        return static_cast<int>(bits >> from & ((std::uint64_t{1} << size) - 1));
    };
    return {field(0, width.one), field(width.one, width.two),
            field(width.one + width.two, width.missing)};
}

CountedDataSets::CountedDataSets(char* const* genotypes, int individuals, int markers,
                                 std::span<short* const> phenotypes, std::span<int* const> rankings,
                                 Instructions instructions)
    : totals_(static_cast<std::size_t>(markers)) {
    const auto count = instructions == Instructions::kWide
                           ? CountKernel<Instructions::kWide>::count
                           : CountKernel<Instructions::kPortable>::count;
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
        std::array<Widths, GenotypeTile::kColumns> width{};
        for (int c = 0; c < columns; ++c) {
            const auto& [one, two, missing] = counts[c].count;
            totals_[first + c] = {one, two, missing};
            width[c] = widths_of(totals_[first + c]);
            ready_ = ready_ && width[c].one + width[c].two + width[c].missing <= kPackedBits;
        }
        if (!ready_) return;
        for (std::size_t d = 0; d < cases.size(); ++d) {
            count(tile.column(0), columns, tile.plane_size(), cases[d].data(), counts.data());
            for (int c = 0; c < columns; ++c) {
                const auto& [one, two, missing] = counts[c].count;
                const std::uint64_t packed = static_cast<std::uint64_t>(one) |
                                             static_cast<std::uint64_t>(two) << width[c].one |
                                             static_cast<std::uint64_t>(missing)
                                                 << (width[c].one + width[c].two);
                rankings[d][first + c] = static_cast<int>(static_cast<std::uint32_t>(packed));
            }
        }
    }
}

}  // namespace vort
