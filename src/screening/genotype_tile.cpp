#include "screening/genotype_tile.h"

#include <algorithm>

namespace vort {

namespace {

constexpr int kBitsOfAByte = 8;

}  // namespace

std::size_t plane_size_of(int individuals) {
    return (static_cast<std::size_t>(individuals) + 63) / 64 * 8;
}

GenotypeTile::GenotypeTile(int individuals)
    : individuals_(individuals),
      plane_size_(plane_size_of(individuals)),
      bits_(kColumns * kPlanes * plane_size_) {}

void GenotypeTile::load(char* const* rows, int first, int count) {
    columns_ = count;
    for (int i = 0; i < individuals_; i += kBitsOfAByte) {
        load_group(rows + i, first, std::min(kBitsOfAByte, individuals_ - i),
                   static_cast<std::size_t>(i / kBitsOfAByte));
    }
}

// Up to eight rows become one byte of every plane. The loop over columns has no branch and no
// dependence between columns, so it runs on as many of them at a time as the machine can.
void GenotypeTile::load_group(char* const* rows, int first, int rows_in_group, std::size_t group) {
    unsigned char one[kColumns] = {};
    unsigned char two[kColumns] = {};
    unsigned char missing[kColumns] = {};
    char codes[kColumns] = {};
    for (int r = 0; r < rows_in_group; ++r) {
        std::copy_n(rows[r] + first, columns_, codes);
        const auto bit = static_cast<unsigned char>(1U << r);
        for (int c = 0; c < kColumns; ++c) {
            one[c] |= static_cast<unsigned char>(codes[c] == 1 ? bit : 0);
            two[c] |= static_cast<unsigned char>(codes[c] == 2 ? bit : 0);
            missing[c] |= static_cast<unsigned char>(codes[c] == -1 ? bit : 0);
        }
    }
    unsigned char* out = bits_.data() + group;
    for (int c = 0; c < columns_; ++c) {
        out[0] = one[c];
        out[plane_size_] = two[c];
        out[2 * plane_size_] = missing[c];
        out += kPlanes * plane_size_;
    }
}

std::vector<unsigned char> case_plane(const short* phenotypes, int individuals,
                                      std::size_t plane_size) {
    std::vector<unsigned char> plane(plane_size);
    for (int i = 0; i < individuals; ++i) {
        if (phenotypes[i] == 1) plane[i / 8] |= static_cast<unsigned char>(1U << (i % 8));
    }
    return plane;
}

}  // namespace vort
