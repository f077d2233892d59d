#include "study/vcf_genotypes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace vort {

namespace {

using Allele = VcfAllele;

constexpr unsigned kMissingBits = 1;

template <typename T>
Allele allele_of(T value, int alleles) {
    constexpr auto kNothing = static_cast<T>(T{1} << (8 * sizeof(T) - 1));
    if (value == kNothing) return Allele::kMissing;
    if (value == kNothing + 1) return Allele::kNoMore;
    const auto number = static_cast<unsigned>(value) >> 1;
    if (number <= static_cast<unsigned>(alleles)) return static_cast<Allele>(number);
    return Allele::kOutOfRange;
}

// Values of one byte, which nearly all records have, are looked up.
class ByteAlleles {
  public:
    explicit ByteAlleles(int alleles) {
        for (unsigned v = 0; v < table_.size(); ++v) {
            table_[v] =
                static_cast<unsigned char>(allele_of(static_cast<std::uint8_t>(v), alleles));
        }
    }
    Allele operator()(const std::uint8_t* value) const {
        return static_cast<Allele>(table_[*value]);
    }

  private:
    std::array<unsigned char, 256> table_{};
};

template <typename T>
struct WideAlleles {
    int alleles;
    Allele operator()(const std::uint8_t* value) const {
        T number = 0;
        std::memcpy(&number, value, sizeof number);
        return allele_of(number, alleles);
    }
};

template <typename Read>
PackedCalls pack(const VcfCalls& calls, int individuals, std::span<unsigned char> out, Read read) {
    PackedCalls packed;
    std::fill(out.begin(), out.end(), static_cast<unsigned char>(0));
    const std::uint8_t* call = calls.first;
    const auto width = static_cast<std::size_t>(calls.width);
    for (int i = 0; i < individuals; ++i) {
        Allele values[2] = {Allele::kMissing, Allele::kNoMore};
        for (int a = 0; a < std::min(calls.ploidy, 2); ++a) values[a] = read(call + width * a);
        const bool more = calls.ploidy > 2 && read(call + 2 * width) != Allele::kNoMore;
        const unsigned bits = packed.take(values[0], values[1], more);
        auto& byte = out[static_cast<std::size_t>(i) / 4];
        byte = static_cast<unsigned char>(byte | bits << 2 * (i % 4));
        call += width * static_cast<std::size_t>(calls.ploidy);
    }
    return packed;
}

}  // namespace

unsigned genotype_bits(VcfAllele first, VcfAllele second) {
    static constexpr unsigned char kBits[4][4] = {
        // second: missing, reference, counted, none
        {1, 1, 1, 1},
        {1, 3, 2, 3},
        {1, 2, 0, 0},
        {1, 1, 1, 1},
    };
    return kBits[static_cast<std::size_t>(first)][static_cast<std::size_t>(second)];
}

unsigned PackedCalls::take(VcfAllele first, VcfAllele second, bool more) {
    polyploid += more ? 1 : 0;
    if (first == Allele::kOutOfRange || second == Allele::kOutOfRange) {
        in_range = false;
        return kMissingBits;
    }
    return more ? kMissingBits : genotype_bits(first, second);
}

PackedCalls pack_calls(const VcfCalls& calls, int individuals, std::span<unsigned char> out) {
    if (calls.width == 1) return pack(calls, individuals, out, ByteAlleles(calls.alleles));
    if (calls.width == 2) {
        return pack(calls, individuals, out, WideAlleles<std::uint16_t>{calls.alleles});
    }
    return pack(calls, individuals, out, WideAlleles<std::uint32_t>{calls.alleles});
}

}  // namespace vort
