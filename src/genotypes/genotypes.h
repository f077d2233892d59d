// The genotypes of a study, two bits each.
//
// Column after column, as a SNP-major .bed file has them: four individuals a byte, the first in the
// lowest bits, a column padded to whole bytes, whose padding means nothing. The codes are that
// file's, so that a .bed is used as it lies on the disk, mapped, and a text file is packed into the
// same form:
//
//     bits  00  2 copies of the counted allele (A1)     10  1 copy
//           01  missing                                 11  0 copies
//
// Individuals and columns count from 0. Reading is safe from many threads at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "common/large_array.h"

namespace vort {

class MappedFile;

// Words of a bit plane over n individuals: bit i % 64 of word i / 64 is individual i, and the bits
// past the last one are 0.
constexpr std::size_t plane_words(int n) {
    return (static_cast<std::size_t>(n) + 63) / 64;
}

// Bytes of a column of n individuals.
constexpr std::size_t packed_size(int n) {
    return (static_cast<std::size_t>(n) + 3) / 4;
}

// Bit planes of one column, plane_words(individuals) words each, owned by the caller.
struct GenotypePlanes {
    std::uint64_t* one;      // individuals with genotype 1
    std::uint64_t* two;      // with genotype 2
    std::uint64_t* missing;  // without a genotype
};

class Genotypes {
  public:
    Genotypes() = default;

    // Owned; every genotype is missing until its column is filled. Throws std::bad_alloc.
    Genotypes(int individuals, int markers);

    // Owned; columns that the caller has packed, packed_size(individuals) bytes each.
    Genotypes(int individuals, int markers, LargeArray<unsigned char> columns);

    // The columns of a mapped file, from byte `offset` on; the file holds them all.
    Genotypes(int individuals, int markers, std::shared_ptr<const MappedFile> file,
              std::size_t offset);

    int individuals() const { return individuals_; }
    int markers() const { return markers_; }

    // Whether the bytes are those of a file.
    bool is_mapped() const { return file_ != nullptr; }

    // Bytes of a column.
    std::size_t stride() const { return stride_; }

    // 0, 1, 2, or -1 for a missing genotype.
    int code(int i, int j) const {
        constexpr signed char kCode[] = {2, -1, 1, 0};
        const unsigned char four =
            columns_[static_cast<std::size_t>(j) * stride_ + static_cast<std::size_t>(i) / 4];
        return kCode[four >> 2 * (i % 4) & 3];
    }

    // The codes of column j, codes[0 .. individuals-1].
    void unpack(int j, signed char* codes) const;

    // The planes of column j.
    void planes(int j, const GenotypePlanes& out) const;

    // The bytes of column j; to be written only in owned genotypes, and by one thread a byte.
    std::span<const unsigned char> column(int j) const {
        return {columns_ + static_cast<std::size_t>(j) * stride_, stride_};
    }
    std::span<unsigned char> owned_column(int j) {
        return {owned_.data() + static_cast<std::size_t>(j) * stride_, stride_};
    }

    bool is_owned() const { return file_ == nullptr; }

    // The bytes of owned genotypes, for whoever packs them anew.
    LargeArray<unsigned char> take_columns() && { return std::move(owned_); }

    // Columns first .. last-1 are not needed for a while: those of a file need not stay in memory.
    void let_go(int first, int last) const;

  private:
    int individuals_ = 0;
    int markers_ = 0;
    std::size_t stride_ = 0;
    const unsigned char* columns_ = nullptr;
    LargeArray<unsigned char> owned_;
    std::shared_ptr<const MappedFile> file_;
};

}  // namespace vort
