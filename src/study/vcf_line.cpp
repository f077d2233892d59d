#include "study/vcf_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

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

// Of lines as nearly all are: one or two of 0, 1 (where there is such an allele) and '.', GT first.
// False where a call is anything else.
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

// Where a format or a call has fewer parts, there is none.
std::optional<std::string_view> part_of(std::string_view parts, int number) {
    for (; number > 0; --number) {
        const std::size_t colon = parts.find(':');
        if (colon == std::string_view::npos) return std::nullopt;
        parts.remove_prefix(colon + 1);
    }
    return parts.substr(0, parts.find(':'));
}

int genotype_in(std::string_view format) {
    for (int k = 0;; ++k) {
        const auto part = part_of(format, k);
        if (!part) return -1;
        if (*part == "GT") return k;
    }
}

std::optional<VcfAllele> allele_of(std::string_view word, int alleles) {
    if (word == ".") return VcfAllele::kMissing;
    int number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (word.starts_with('-') || end != word.data() + word.size() ||
        error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error != std::errc() || number >= alleles) return VcfAllele::kOutOfRange;
    return number == 0 ? VcfAllele::kReference : VcfAllele::kCounted;
}

// Counts it in `packed`.
std::optional<unsigned> call_bits(std::string_view call, int alleles, PackedCalls& packed) {
    VcfAllele first_two[2] = {VcfAllele::kMissing, VcfAllele::kNoMore};
    for (std::size_t count = 0;; ++count) {
        const std::size_t bar = call.find_first_of("/|");
        const auto allele = allele_of(call.substr(0, bar), alleles);
        if (!allele) return std::nullopt;
        if (count < 2) first_two[count] = *allele;
        if (bar == std::string_view::npos) {
            return packed.take(first_two[0], first_two[1], count > 1);
        }
        call.remove_prefix(bar + 1);
    }
}

std::optional<PackedCalls> pack_any_calls(const VcfLine& line, int individuals,
                                          std::span<unsigned char> out) {
    PackedCalls packed;
    std::ranges::fill(out, static_cast<unsigned char>(0));
    std::string_view rest = line.calls;
    for (int i = 0; i < individuals; ++i) {
        const std::size_t tab = rest.find('\t');
        if ((tab == std::string_view::npos) != (i + 1 == individuals)) return std::nullopt;
        std::optional<std::string_view> call;
        if (line.genotype >= 0) call = part_of(rest.substr(0, tab), line.genotype);
        const auto bits = call_bits(call.value_or("."), line.alleles, packed);
        if (!bits) return std::nullopt;
        auto& byte = out[static_cast<std::size_t>(i) / 4];
        byte = static_cast<unsigned char>(byte | *bits << 2 * (i % 4));
        rest.remove_prefix(tab == std::string_view::npos ? rest.size() : tab + 1);
    }
    return packed;
}

}  // namespace

bool split_vcf_line(std::string_view line, VcfLine& fields) {
    std::string_view format, unused;
    for (std::string_view* const field :
         {&fields.contig, &fields.position, &fields.name, &fields.reference, &fields.alternative,
          &unused, &unused, &unused, &format}) {
        if (!take_field(line, *field)) return false;
    }
    for (const std::string_view needed :
         {fields.contig, fields.reference, fields.alternative, format}) {
        if (needed.empty()) return false;
    }
    const auto& alternative = fields.alternative;
    const auto more = std::count(alternative.begin(), alternative.end(), ',');
    fields.alleles = alternative == "." ? 1 : 2 + static_cast<int>(more);
    fields.genotype = genotype_in(format);
    fields.calls = line;
    return true;
}

std::optional<PackedCalls> pack_line(const VcfLine& line, int individuals,
                                     std::span<unsigned char> out) {
    const bool plain =
        line.genotype == 0 && pack_plain_calls(line.calls, line.alleles, individuals, out);
    return plain ? PackedCalls{} : pack_any_calls(line, individuals, out);
}

}  // namespace vort
