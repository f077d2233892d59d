#include "study/vcf_line.h"

#include <algorithm>
#include <array>
#include <cstddef>

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

constexpr auto kAlleles = static_cast<std::size_t>(VcfAllele::kOutOfRange) + 1;
constexpr unsigned kNotPlain = 4;  // a bit that no genotype has

// Looked up rather than asked for: which genotype comes next cannot be foretold.
class CallTables {
  public:
    explicit CallTables(int alleles) {
        alleles_.fill(static_cast<unsigned char>(VcfAllele::kOutOfRange));
        alleles_['.'] = static_cast<unsigned char>(VcfAllele::kMissing);
        alleles_['0'] = static_cast<unsigned char>(VcfAllele::kReference);
        if (alleles > 1) alleles_['1'] = static_cast<unsigned char>(VcfAllele::kCounted);
        for (std::size_t a = 0; a < kAlleles; ++a) {
            for (std::size_t b = 0; b < kAlleles; ++b) bits_[a][b] = bits_of(a, b);
        }
    }

    std::size_t allele(char c) const { return alleles_[static_cast<unsigned char>(c)]; }
    unsigned bits(std::size_t first, std::size_t second) const { return bits_[first][second]; }

  private:
    static unsigned char bits_of(std::size_t first, std::size_t second) {
        if (first + 1 == kAlleles || second + 1 == kAlleles) return kNotPlain;
        return static_cast<unsigned char>(
            genotype_bits(static_cast<VcfAllele>(first), static_cast<VcfAllele>(second)));
    }

    std::array<unsigned char, 256> alleles_{};
    unsigned char bits_[kAlleles][kAlleles]{};
};

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
    const CallTables tables(alleles);
    const char* at = calls.data();
    const char* const end = at + calls.size();
    unsigned byte = 0;
    for (int i = 0; i < individuals; ++i) {
        if (at >= end) return false;
        const std::size_t first = tables.allele(*at++);
        auto second = static_cast<std::size_t>(VcfAllele::kNoMore);
        if (*at == '/' || *at == '|') {
            second = tables.allele(at[1]);
            at += 2;
        }
        const unsigned bits = tables.bits(first, second);
        if (bits == kNotPlain) return false;
        byte |= bits << 2 * (i % 4);
        if (i % 4 == 3 || i + 1 == individuals) {
            out[static_cast<std::size_t>(i) / 4] = static_cast<unsigned char>(byte);
            byte = 0;
        }
        if (*at == ':') at = std::find(at, end, '\t');
        if (*at++ != (i + 1 == individuals ? '\0' : '\t')) return false;
    }
    return at == end + 1;
}

}  // namespace vort
