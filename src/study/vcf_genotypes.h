// The calls of one VCF record, as htslib holds them, to packed genotypes.
#pragma once

#include <cstdint>
#include <span>

namespace vort {

// Calls of `width` bytes each, `ploidy` for each individual. A value is 0 for a missing allele and
// else twice (the allele's number + 1), with or without 1 for its phase; of a type's two smallest
// values the first is missing, too, and the second stands behind the last allele of an individual
// that has fewer.
struct VcfCalls {
    const std::uint8_t* first = nullptr;
    int width = 1;  // 1, 2 or 4
    int ploidy = 0;
    int alleles = 0;  // of the marker, 1 or 2
};

// What one value of a call says.
enum class VcfAllele : unsigned char { kMissing, kReference, kCounted, kNoMore, kOutOfRange };

// The bits (genotypes/genotypes.h) of a call by its first two values, none of them out of range.
unsigned genotype_bits(VcfAllele first, VcfAllele second);

struct PackedCalls {
    bool in_range = true;  // no call names an allele that the marker does not have
    long polyploid = 0;    // calls of more than two alleles, which are taken as missing

    // The bits of one more call, of its first two values and whether there are more of them.
    unsigned take(VcfAllele first, VcfAllele second, bool more);
};

// Packs individuals 0, 1, ... into `out`, of packed_size(individuals) bytes. The counted allele is
// number 1. Half a call is missing, and one allele alone counts as two copies.
PackedCalls pack_calls(const VcfCalls& calls, int individuals, std::span<unsigned char> out);

}  // namespace vort
