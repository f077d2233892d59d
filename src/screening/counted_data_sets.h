// The genotype counts of all markers in all data sets, from one pass over the genotypes.
//
// The data sets of a run differ in who is a case, not in the genotypes. So the genotypes of a
// marker are counted once over everybody, and then, for each data set, only its cases; the controls
// follow by subtraction. The three case counts of a marker (genotype 1, genotype 2, missing) cannot
// exceed its totals, so they are packed, each in as many bits as its total has, into the 32 bits
// that the data set's ranking will need for the marker anyway: the counts take no memory of
// their own, and are gone when the ranking is written over them.
//
//     totals 437, 61, 4 (9, 6 and 3 bits):   | missing | two | one |   18 of 32 bits
//
// Where a marker needs more than 32 bits (more than some ten thousand individuals) there are no
// packed counts, and ready() says so.
//
// Cost: three bits for each individual, marker and data set.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numeric/instructions.h"

namespace vort {

// Individuals, or cases, with genotype 1, with genotype 2, and with a missing genotype.
struct TopCounts {
    int one;
    int two;
    int missing;
};

class CountedDataSets {
  public:
    // phenotypes[d] and rankings[d] are the rows of data set d: `individuals` phenotypes, and
    // `markers` ints that receive its packed counts. `genotypes` has `individuals` rows.
    CountedDataSets(char* const* genotypes, int individuals, int markers,
                    std::span<short* const> phenotypes, std::span<int* const> rankings,
                    Instructions instructions);

    bool ready() const { return ready_; }

    // Over all individuals; j from 0.
    const TopCounts& total(int j) const { return markers_[j].total; }

    // The cases of column j, from its packed counts in a data set's ranking row.
    TopCounts cases(int j, int packed) const {
        const Packing& packing = markers_[j];
        const std::uint64_t bits = static_cast<std::uint32_t>(packed);
        const std::uint64_t upper = bits >> packing.two_from;
        const int two_bits = packing.missing_from - packing.two_from;
        return {static_cast<int>(bits - (upper << packing.two_from)),
                static_cast<int>(upper & ((std::uint64_t{1} << two_bits) - 1)),
                static_cast<int>(upper >> two_bits)};
    }

  private:
    // A marker's totals, and where in the 32 bits its second and third count begin.
    struct Packing {
        explicit Packing(const TopCounts& total);
        Packing() = default;

        TopCounts total;
        unsigned char two_from;
        unsigned char missing_from;
        unsigned char size;
    };

    std::vector<Packing> markers_;
    bool ready_ = true;
};

}  // namespace vort
