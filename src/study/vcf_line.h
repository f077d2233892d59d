// A record of a VCF as text, taken apart where it lies. The library would do that, too, but ten
// times as slowly, and where memory lacks it may change genotypes without a word.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "study/vcf_genotypes.h"

namespace vort {

struct VcfLine {
    std::string_view contig, position, name, reference, alternative;
    int alleles = 0;         // the reference's included
    int genotype = -1;       // which part of a call is GT, from 0; -1 where none is
    std::string_view calls;  // all that stands behind FORMAT
};

// False where a field is missing, or empty that must not be. `line` and what is taken from it are
// not owned.
bool split_vcf_line(std::string_view line, VcfLine& fields);

// Packs the calls of individuals 0, 1, ..., as pack_calls() does. Nothing, with `out` undefined,
// where there are more or fewer calls or GT is more than numbers and dots between bars. Behind the
// line stands a NUL.
std::optional<PackedCalls> pack_line(const VcfLine& line, int individuals,
                                     std::span<unsigned char> out);

}  // namespace vort
