// The genotypes of the markers a builder works on, as bit planes.
//
// Individuals are in the builder's order. Imputed genotypes count as missing here, since an
// individual is in no cell of a set with a marker that was imputed in it. Individuals and markers
// count from 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "genotypes/genotypes.h"

namespace vort {

class MarkerPlanes {
  public:
    // plane_words(individuals) words each.
    struct Planes {
        const std::uint64_t* one;      // individuals with genotype 1
        const std::uint64_t* two;      // with genotype 2
        const std::uint64_t* missing;  // without a genotype
    };

    // Every genotype is 0 until its marker is set.
    MarkerPlanes(int individuals, int markers);

    int individuals() const { return individuals_; }
    int markers() const { return markers_; }
    std::size_t words() const { return words_; }

    // codes[0 .. individuals-1]: 0, 1, 2, or -1 for a missing genotype. Different markers may be
    // set at the same time.
    void set(int marker, std::span<const signed char> codes);

    Planes planes(int marker) const;

    // The planes as one text, equal for markers with equal genotypes.
    std::string_view bytes(int marker) const;

    // 0, 1, 2, or -1 for a missing genotype.
    int code(int i, int marker) const;

  private:
    int individuals_;
    int markers_;
    std::size_t words_;
    std::vector<std::uint64_t> planes_;  // of each marker: one, two, missing
};

}  // namespace vort
