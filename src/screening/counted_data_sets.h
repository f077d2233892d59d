// The genotype counts of all markers in all data sets, from one pass over the genotypes.
//
// The data sets of a run differ in who is a case, not in the genotypes. So the genotypes of a
// marker are counted once over everybody, and then, for each data set, only its cases; the controls
// follow by subtraction. The three case counts of a marker (genotype 1, genotype 2, missing) cannot
// exceed its totals, so they are packed, each in as many bits as its total has, into the int
// that the data set's ranking will need for the marker anyway: the counts take no memory of
// their own, and are gone when the ranking is written over them.
//
//     totals 437, 61, 4 (9, 6 and 3 bits):   | missing | two | one |   18 of 31 bits
//
// Where a marker needs more than 31 bits (more than some ten thousand individuals) there are no
// packed counts, and ready() says so.
//
// Cost: three bits for each individual, marker and data set.
#pragma once

#include <span>
#include <vector>

#include "numeric/instructions.h"
#include "screening/count_kernel.h"
#include "screening/packed_columns.h"

namespace vort {

class CountedDataSets {
  public:
    // phenotypes[d] and rankings[d] are the rows of data set d: `individuals` phenotypes, and
    // `markers` ints that receive its packed counts. `genotypes` has `individuals` rows.
    CountedDataSets(char* const* genotypes, int individuals, int markers,
                    std::span<short* const> phenotypes, std::span<int* const> rankings,
                    Instructions instructions);

    bool ready() const { return ready_; }

    // From column `first` (from 0) on. The arrays go on, with zeros, to a whole number of
    // marker blocks.
    PackedColumns columns(int first) const {
        return {one_.data() + first, two_.data() + first, missing_.data() + first,
                two_from_.data() + first, missing_from_.data() + first};
    }

  private:
    using Count = decltype(PlaneCounts::count);

    void pack_totals(int j, const Count& total);
    int packed(int j, const Count& cases) const;

    std::vector<int> one_;
    std::vector<int> two_;
    std::vector<int> missing_;
    std::vector<unsigned char> two_from_;
    std::vector<unsigned char> missing_from_;
    bool ready_ = true;
};

}  // namespace vort
