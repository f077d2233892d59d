#include "study/vcf_line.h"

#include <algorithm>
#include <cstring>

#include "study/vcf_genotypes.h"
#include "study/word_lines.h"

namespace vort {

namespace {

// Takes what stands in front of the first tab, and the tab, off the text.
bool take_field(std::string_view& text, std::string_view& field) {
    const std::size_t tab = text.find('\t');
    if (tab == std::string_view::npos) return false;
    field = text.substr(0, tab);
    text.remove_prefix(tab + 1);
    return true;
}

VcfAllele allele_of(char c, int alleles) {
    if (c == '0') return VcfAllele::kReference;
    if (c == '1' && alleles > 1) return VcfAllele::kCounted;
    return c == '.' ? VcfAllele::kMissing : VcfAllele::kOutOfRange;
}

}  // namespace

bool split_vcf_line(std::string_view line, VcfLine& fields) {
    std::string_view position, format, unused;
    for (std::string_view* const field :
         {&fields.contig, &position, &fields.name, &fields.reference, &fields.alternative, &unused,
          &unused, &unused, &format}) {
        if (!take_field(line, *field) || field->empty()) return false;
    }
    if (format != "GT" && !format.starts_with("GT:")) return false;
    const auto& alternative = fields.alternative;
    const auto more = std::count(alternative.begin(), alternative.end(), ',');
    fields.alleles = alternative == "." ? 1 : 2 + static_cast<int>(more);
    fields.calls = line;
    return read_whole(position, fields.position) && fields.position >= 0;
}

bool pack_plain_calls(std::string_view calls, int alleles, int individuals,
                      std::span<unsigned char> out) {
    std::fill(out.begin(), out.end(), static_cast<unsigned char>(0));
    const char* at = calls.data();
    const char* const end = at + calls.size();
    for (int i = 0; i < individuals; ++i) {
        const VcfAllele first = allele_of(at[0], alleles);
        if (first == VcfAllele::kOutOfRange) return false;
        VcfAllele second = VcfAllele::kNoMore;
        ++at;
        if (*at == '/' || *at == '|') {
            second = allele_of(at[1], alleles);
            if (second == VcfAllele::kOutOfRange) return false;
            at += 2;
        }
        if (*at == ':') at = std::find(at, end, '\t');
        auto& byte = out[static_cast<std::size_t>(i) / 4];
        byte = static_cast<unsigned char>(byte | genotype_bits(first, second) << 2 * (i % 4));
        const bool last = i + 1 == individuals;
        if (last ? at != end : *at != '\t') return false;
        ++at;
    }
    return true;
}

}  // namespace vort
