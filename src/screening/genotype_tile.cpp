#include "screening/genotype_tile.h"

#include <algorithm>
#include <cstring>

namespace vort {

namespace {

constexpr int kBitsOfAByte = 8;

using Codes [[gnu::vector_size(16)]] = signed char;

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
    if (count == kColumns) {
        for (int i = 0; i < individuals_; i += kBitsOfAByte) {
            const char* group[kBitsOfAByte];
            const int size = std::min(kBitsOfAByte, individuals_ - i);
            for (int r = 0; r < size; ++r) group[r] = rows[i + r] + first;
            load_group(group, size, static_cast<std::size_t>(i / kBitsOfAByte));
        }
        return;
    }
    // The last columns of the matrix: rows of a whole tile's length, padded.
    for (int i = 0; i < individuals_; i += kBitsOfAByte) {
        char padded[kBitsOfAByte][kColumns] = {};
        const char* group[kBitsOfAByte];
        const int size = std::min(kBitsOfAByte, individuals_ - i);
        for (int r = 0; r < size; ++r) {
            std::copy_n(rows[i + r] + first, count, padded[r]);
            group[r] = padded[r];
        }
        load_group(group, size, static_cast<std::size_t>(i / kBitsOfAByte));
    }
}

// Up to eight rows become one byte of every plane, sixteen columns at a time.
void GenotypeTile::load_group(const char* const* rows, int size, std::size_t group) {
    constexpr int kParts = kColumns / static_cast<int>(sizeof(Codes));
    Codes plane[kPlanes][kParts] = {};
    for (int r = 0; r < size; ++r) {
        __builtin_prefetch(rows[r] + kColumns);  // the next tile's part of a row is far from here
        Codes bit;
        std::memset(&bit, 1 << r, sizeof bit);
        for (int part = 0; part < kParts; ++part) {
            Codes codes;
            std::memcpy(&codes, rows[r] + part * sizeof codes, sizeof codes);
            plane[0][part] |= (codes == 1) & bit;
            plane[1][part] |= (codes == 2) & bit;
            plane[2][part] |= (codes == -1) & bit;
        }
    }
    unsigned char byte[kPlanes][kColumns];
    std::memcpy(byte, plane, sizeof byte);
    unsigned char* out = bits_.data() + group;
    for (int c = 0; c < columns_; ++c) {
        for (int p = 0; p < kPlanes; ++p, out += plane_size_) *out = byte[p][c];
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
