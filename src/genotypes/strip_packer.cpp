#include "genotypes/strip_packer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace vort {

namespace {

constexpr int kBlock = 2048;  // genotypes of a row that are read before the next row's
constexpr int kAtOnce = 16;   // columns packed at a time

using Bytes [[gnu::vector_size(kAtOnce)]] = unsigned char;
using Pairs [[gnu::vector_size(kAtOnce)]] = std::uint16_t;

// The codes of a strip, kBlock columns of it.
struct Block {
    alignas(64) signed char codes[kStripRows][kBlock];
};

// Four rows' codes of sixteen columns, from column c on, as a byte of each column. Modulo 4 a code
// x is stored as the complement of x ^ x >> 1.
Bytes four_rows(const Block& block, int first, int c) {
    Bytes packed = {};
    for (int r = first + 3; r >= first; --r) {
        Bytes codes;
        std::memcpy(&codes, block.codes[r] + c, sizeof codes);
        packed += packed;
        packed += packed;
        packed |= codes & 3;
    }
    const auto halved = reinterpret_cast<Bytes>(reinterpret_cast<Pairs>(packed) >> 1);
    return ~(packed ^ (halved & 0x55));
}

// The eight rows' bytes of sixteen columns, two bytes a column.
void sixteen_columns(const Block& block, int c, std::uint16_t* out) {
    const Bytes first = four_rows(block, 0, c);
    const Bytes second = four_rows(block, 4, c);
    const Bytes both[] = {__builtin_shufflevector(first, second, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20,
                                                  5, 21, 6, 22, 7, 23),
                          __builtin_shufflevector(first, second, 8, 24, 9, 25, 10, 26, 11, 27, 12,
                                                  28, 13, 29, 14, 30, 15, 31)};
    std::memcpy(out, both, sizeof both);
}

}  // namespace

PackedStrip packed_strip_for(int markers) {
    return PackedStrip((static_cast<std::size_t>(markers) + kAtOnce - 1) / kAtOnce * kAtOnce);
}

void pack_strip(std::span<RowParser> rows, int markers, PackedStrip& packed, int* given) {
    constexpr signed char kMissing = -1;
    Block block;
    // Zeros where the strip has no row: padding of the columns.
    std::memset(block.codes, 2, sizeof block.codes);
    std::fill_n(given, rows.size(), 0);
    for (int first = 0; first < markers; first += kBlock) {
        const int columns = std::min(kBlock, markers - first);
        for (std::size_t r = 0; r < rows.size(); ++r) {
            signed char* const codes = block.codes[r];
            // A row that has ended gives nothing more.
            const int count = given[r] == first ? rows[r].parse(columns, codes) : 0;
            std::fill(codes + count, codes + columns, kMissing);
            given[r] += count;
        }
        for (int c = 0; c < columns; c += kAtOnce) {
            sixteen_columns(block, c, packed.data() + first + c);
        }
    }
}

void store_strips(std::span<const PackedStrip* const> strips, int markers,
                  const StripPlace& place) {
    const std::uint16_t* from[kStripsAtOnce] = {};
    for (std::size_t k = 0; k < kStripsAtOnce; ++k) {
        from[k] = strips[std::min(k, strips.size() - 1)]->data();
    }
    unsigned char* out = place.first;
    for (int j = 0; j < markers; ++j, out += place.stride) {
        std::uint16_t words[kStripsAtOnce];
        for (std::size_t k = 0; k < kStripsAtOnce; ++k) words[k] = from[k][j];
        if (place.bytes == sizeof words) {
            std::memcpy(out, words, sizeof words);
        } else {
            std::memcpy(out, words, place.bytes);
        }
    }
}

}  // namespace vort
