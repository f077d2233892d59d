// A few columns of the genotype matrix as bit planes.
//
// The matrix holds a byte for each genotype, row by row. To count, for many data sets, how many
// cases have genotype g at a marker, one bit for each individual is enough: the plane of "has
// genotype g" and the plane of "is a case" are combined word by word, and the bits counted. A tile
// of columns is turned into planes once, used for all data sets, and forgotten: 64 columns of
// 1000 individuals take 24 kilobytes, which stay in the processor's first cache.
//
// A plane is a row of bytes, bit i % 8 of byte i / 8 being individual i, padded with zeros to
// whole 64-bit words. Cost: a few operations for each eight genotypes.
#pragma once

#include <cstddef>
#include <vector>

namespace vort {

enum class Plane { kOne, kTwo, kMissing };  // genotype 1, genotype 2, missing

class GenotypeTile {
  public:
    static constexpr int kColumns = 64;
    static constexpr int kPlanes = 3;

    explicit GenotypeTile(int individuals);

    // Turns columns first .. first + count - 1 (count <= kColumns) of the rows into planes.
    void load(char* const* rows, int first, int count);

    int columns() const { return columns_; }

    // Bytes of a plane, a multiple of 8.
    std::size_t plane_size() const { return plane_size_; }

    // The planes of a column, kPlanes x plane_size() bytes in the order of Plane.
    const unsigned char* column(int c) const { return bits_.data() + c * kPlanes * plane_size_; }

  private:
    void load_group(const char* const* rows, int size, std::size_t group);

    int individuals_;
    std::size_t plane_size_;
    int columns_ = 0;
    std::vector<unsigned char> bits_;
};

// The plane of the cases among `individuals` phenotypes, plane_size bytes.
std::vector<unsigned char> case_plane(const short* phenotypes, int individuals,
                                      std::size_t plane_size);

// Bytes of a plane of so many individuals.
std::size_t plane_size_of(int individuals);

}  // namespace vort
