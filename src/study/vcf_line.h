// A record of a VCF as text, where it is as plain as nearly all are: ten times as fast as taking
// every field apart.
#pragma once

#include <span>
#include <string_view>

namespace vort {

struct VcfLine {
    std::string_view contig, name, reference, alternative;
    long position = 0;
    int alleles = 0;         // the reference's included
    std::string_view calls;  // all that stands behind FORMAT
};

// False where a field is missing, the position is no number or GT is not the first of the format;
// somebody else has to say what that means. `line` and what is taken from it are not owned.
bool split_vcf_line(std::string_view line, VcfLine& fields);

// Packs the calls of individuals 0, 1, ..., as pack_calls() would. False, with `out` undefined,
// where a call is not one or two of 0, 1 (where there is such an allele) and '.', or there are more
// or fewer calls. Behind `calls` stands a NUL.
bool pack_plain_calls(std::string_view calls, int alleles, int individuals,
                      std::span<unsigned char> out);

}  // namespace vort
