#include "genotypes/genotypes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "genotypes/mapped_file.h"
#include "genotypes/plane_kernel.h"

namespace vort {

namespace {

constexpr unsigned char kFourMissing = 0x55;

using FourCodes = std::array<signed char, 4>;

constexpr std::array<FourCodes, 256> four_codes() {
    constexpr signed char kCode[] = {2, -1, 1, 0};
    std::array<FourCodes, 256> table{};
    for (unsigned four = 0; four < table.size(); ++four) {
        for (unsigned k = 0; k < 4; ++k) table[four][k] = kCode[four >> 2 * k & 3];
    }
    return table;
}

constexpr std::array<FourCodes, 256> kFourCodes = four_codes();

}  // namespace

Genotypes::Genotypes(int individuals, int markers)
    : Genotypes(
          individuals, markers,
          LargeArray<unsigned char>(packed_size(individuals) * static_cast<std::size_t>(markers))) {
    std::fill_n(owned_.data(), stride_ * static_cast<std::size_t>(markers), kFourMissing);
}

Genotypes::Genotypes(int individuals, int markers, LargeArray<unsigned char> columns)
    : individuals_(individuals),
      markers_(markers),
      stride_(packed_size(individuals)),
      columns_(columns.data()),
      owned_(std::move(columns)) {}

Genotypes::Genotypes(int individuals, int markers, std::shared_ptr<const MappedFile> file,
                     std::size_t offset)
    : individuals_(individuals),
      markers_(markers),
      stride_(packed_size(individuals)),
      columns_(file->bytes() + offset),
      file_(std::move(file)) {}

void Genotypes::unpack(int j, signed char* codes) const {
    const unsigned char* const bytes = column(j).data();
    const int whole = individuals_ / 4;
    for (int b = 0; b < whole; ++b) {
        std::memcpy(codes + 4 * b, kFourCodes[bytes[b]].data(), 4);
    }
    for (int i = 4 * whole; i < individuals_; ++i) {
        codes[i] = kFourCodes[bytes[whole]][static_cast<std::size_t>(i % 4)];
    }
}

void Genotypes::let_go(int first, int last) const {
    if (is_owned()) return;
    const unsigned char* const from = column(first).data();
    file_->let_go(from, static_cast<std::size_t>(last - first) * stride_);
}

void Genotypes::planes(int j, const GenotypePlanes& out) const {
    static const auto kernel =
        kernel_for(best_instructions(), []<Instructions I>() { return PlaneKernel<I>::planes; });
    kernel(column(j).data(), individuals_, out);
}

}  // namespace vort
