// The body of PairCountKernel, for the sources that compile it, once for each set of instructions.
//
// A lane is a pair. The first marker's word is the same in all lanes, the second markers' words lie
// side by side, so that bits are counted without a sum across lanes, and the counts are where the
// arithmetic of the test wants them. Of the 4 x 4 table of two markers' genotypes (the fourth is
// "missing") nine counts suffice, those of genotypes 1, 2 and known:
//
//     cell (0, 2) = known and 2  -  1 and 2  -  2 and 2        and so on
//
// Where neither marker misses a genotype, the five that involve "known" are the markers' margins.
//
// Processors without an instruction that counts the bits of vectors add up the counts of single
// bytes, which have room for 31 words before they must be added across the bytes.
#pragma once

#include <cstdint>
#if defined(__AVX2__)
#include <immintrin.h>
#endif

#include "csm/pair_count_kernel.h"
#include "numeric/lanes.h"

namespace vort {

// Counting the bits of words: partial() of up to kWords words may be added before full() makes
// counts of the sum. Without the instructions a set is named for, it makes do with narrower lanes.
template <Instructions kInstructions>
struct BitLanes {
    using Words [[gnu::vector_size(16)]] = std::uint64_t;
    using Doubles [[gnu::vector_size(16)]] = double;
    using Ints [[gnu::vector_size(8)]] = int;
    static constexpr std::size_t kWords = 31;

    [[gnu::always_inline]] static inline Words partial(Words x) {
        x -= x >> 1 & 0x5555555555555555;
        x = (x & 0x3333333333333333) + (x >> 2 & 0x3333333333333333);
        return (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0F;
    }
    [[gnu::always_inline]] static inline Words full(Words x) {
        x = (x & 0x00FF00FF00FF00FF) + (x >> 8 & 0x00FF00FF00FF00FF);
        x += x >> 16;
        return (x + (x >> 32)) & 0xFFFF;
    }
};

#if defined(__AVX2__)
template <>
struct BitLanes<Instructions::kWide> {
    using Words [[gnu::vector_size(32)]] = std::uint64_t;
    using Doubles [[gnu::vector_size(32)]] = double;
    using Ints [[gnu::vector_size(16)]] = int;
    static constexpr std::size_t kWords = 31;

    // A shuffle looks up the counts of the half bytes.
    [[gnu::always_inline]] static inline Words partial(Words x) {
        const __m256i counts = _mm256_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4,  //
                                                0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
        const Words low = x & 0x0F0F0F0F0F0F0F0F;
        const Words high = x >> 4 & 0x0F0F0F0F0F0F0F0F;
        return reinterpret_cast<Words>(
            _mm256_add_epi8(_mm256_shuffle_epi8(counts, reinterpret_cast<__m256i>(low)),
                            _mm256_shuffle_epi8(counts, reinterpret_cast<__m256i>(high))));
    }
    [[gnu::always_inline]] static inline Words full(Words x) {
        return reinterpret_cast<Words>(
            _mm256_sad_epu8(reinterpret_cast<__m256i>(x), _mm256_setzero_si256()));
    }
};
#else
template <>
struct BitLanes<Instructions::kWide> : BitLanes<Instructions::kPortable> {};
#endif

#if defined(__AVX512VPOPCNTDQ__)
template <>
struct BitLanes<Instructions::kWidest> {
    using Words [[gnu::vector_size(64)]] = std::uint64_t;
    using Doubles [[gnu::vector_size(64)]] = double;
    using Ints [[gnu::vector_size(32)]] = int;
    static constexpr std::size_t kWords = SIZE_MAX / 2;

    [[gnu::always_inline]] static inline Words partial(Words x) {
        return reinterpret_cast<Words>(_mm512_popcnt_epi64(reinterpret_cast<__m512i>(x)));
    }
    [[gnu::always_inline]] static inline Words full(Words x) { return x; }
};
#else
template <>
struct BitLanes<Instructions::kWidest> : BitLanes<Instructions::kWide> {};
#endif

template <Instructions kInstructions>
struct PairLanes {
    using Bits = BitLanes<kInstructions>;
    using Words = typename Bits::Words;
    using Doubles = typename Bits::Doubles;
    using Ints = typename Bits::Ints;
    static constexpr int kLanesAtOnce = sizeof(Words) / sizeof(std::uint64_t);

    // Individuals of one class by genotype 1, genotype 2, known of both markers.
    struct Counts {
        Words of[kGroupPlanes][kGroupPlanes];
    };

    // What the test needs of the cells: sums of squares and of the phenotype, individuals in cells,
    // cells seen.
    struct Sums {
        Doubles squares{};
        Doubles total{};
        Doubles individuals{};
        Doubles seen{};
    };

    [[gnu::always_inline]] static inline Words load(const std::uint64_t* at) {
        Words words;
        __builtin_memcpy(&words, at, sizeof words);
        return words;
    }

    // Counts below 2^52 as the low bits of doubles from 2^52 on.
    [[gnu::always_inline]] static inline Doubles to_doubles(Words counts) {
        constexpr double kTwoTo52 = 4503599627370496.0;
        constexpr std::uint64_t kBitsOfTwoTo52 = 0x4330000000000000;
        return reinterpret_cast<Doubles>(counts | kBitsOfTwoTo52) - kTwoTo52;
    }

    // Counts over `size` words of the first kPlanes planes.
    template <int kPlanes>
    [[gnu::always_inline]] static inline Counts count(const std::uint64_t* first,
                                                      const std::uint64_t* second,
                                                      std::size_t size) {
        Counts total{};
        while (size > 0) {
            const std::size_t part = size < Bits::kWords ? size : Bits::kWords;
            Counts partial{};
            for (std::size_t w = 0; w < part; ++w) {
                for (int p = 0; p < kPlanes; ++p) {
                    const Words a = Words{} + first[p];
                    for (int q = 0; q < kPlanes; ++q) {
                        partial.of[p][q] += Bits::partial(a & load(second + q * kGroupMarkers));
                    }
                }
                first += kGroupPlanes;
                second += kGroupPlanes * kGroupMarkers;
            }
            for (int p = 0; p < kPlanes; ++p) {
                for (int q = 0; q < kPlanes; ++q) total.of[p][q] += Bits::full(partial.of[p][q]);
            }
            size -= part;
        }
        return total;
    }

    // Counts where no genotype is missing: `all` individuals of the class, margins of the class.
    [[gnu::always_inline]] static inline Counts count_complete(
        const std::uint64_t* first, const std::uint64_t* second, std::size_t size,
        std::uint64_t all, const std::uint64_t* first_margins,
        const std::uint64_t* second_margins) {
        Counts counts = count<2>(first, second, size);
        for (int g = 0; g < 2; ++g) {
            counts.of[g][2] = Words{} + first_margins[g];
            counts.of[2][g] = load(second_margins + g * kGroupMarkers);
        }
        counts.of[2][2] = Words{} + all;
        return counts;
    }

    // From genotypes 1, 2, known to genotypes 1, 2, 0.
    [[gnu::always_inline]] static inline void known_to_0(Counts& counts) {
        for (auto& row : counts.of) row[2] -= row[0] + row[1];
        for (int q = 0; q < kGroupPlanes; ++q) {
            counts.of[2][q] -= counts.of[0][q] + counts.of[1][q];
        }
    }

    [[gnu::always_inline]] static inline Sums sum_cells(const PairStudy& study, Counts& cases,
                                                        Counts& controls) {
        known_to_0(cases);
        known_to_0(controls);
        Sums sums;
        for (int p = 0; p < kGroupPlanes; ++p) {
            for (int q = 0; q < kGroupPlanes; ++q) {
                const Doubles cases_here = to_doubles(cases.of[p][q]);
                const Doubles here = to_doubles(cases.of[p][q] + controls.of[p][q]);
                const Doubles seen = here > 0.0 ? Doubles{} + 1.0 : Doubles{};
                const Doubles sum = cases_here * study.case_step + here * study.control_value;
                sums.squares += sum * sum / (here > 0.0 ? here : seen + 1.0);
                sums.total += sum;
                sums.individuals += here;
                sums.seen += seen;
            }
        }
        return sums;
    }

    // The spread of the means around the total over all individuals, multiplied out:
    //     sum of n_c (mean_c - ybar)^2 = squares - 2 ybar total + individuals ybar^2
    [[gnu::always_inline]] static inline void write_codes(const PairStudy& study, const Sums& sums,
                                                          PairCode* out) {
        const Doubles ybar = sums.total / study.individuals;
        const Doubles spread = sums.squares - ybar * (sums.total * 2.0 - ybar * sums.individuals);
        const Doubles testable = sums.seen > 1.0 ? Doubles{} + 1.0 : Doubles{};
        Doubles statistic = spread * study.scale * testable;
        constexpr double kLargest = kLargestStatistic;
        statistic = statistic < kLargest ? statistic : Doubles{} + kLargest;
        statistic = statistic > 0.0 ? statistic : Doubles{};
        const Ints units = __builtin_convertvector(statistic, Ints);
        const Ints freedom = __builtin_convertvector((sums.seen - 1.0) * testable, Ints);
        for (int l = 0; l < kLanesAtOnce; ++l) {
            out[l] = static_cast<PairCode>(freedom[l]) << kStatisticBits |
                     static_cast<PairCode>(units[l]);
        }
    }
};

template <Instructions kInstructions>
void PairCountKernel<kInstructions>::codes(const PairStudy& study, const FirstMarker& first,
                                           const MarkerGroups& seconds, PairCode* out) {
    using Pairs = PairLanes<kInstructions>;
    const std::size_t case_step = study.case_words * kGroupPlanes;
    const std::size_t stride = case_step + study.control_words * kGroupPlanes;
    for (std::size_t g = 0; g < seconds.count; ++g) {
        for (int lane = 0; lane < kGroupMarkers; lane += Pairs::kLanesAtOnce) {
            const std::uint64_t* const a = first.words;
            const std::uint64_t* const b = seconds.words + g * stride * kGroupMarkers + lane;
            const std::uint64_t* const b_controls = b + case_step * kGroupMarkers;
            typename Pairs::Counts cases;
            typename Pairs::Counts controls;
            if (first.complete && seconds.complete[g] != 0) {
                const std::uint64_t* const margins =
                    seconds.margins + g * kMargins * kGroupMarkers + lane;
                cases = Pairs::count_complete(a, b, study.case_words, study.cases, first.margins,
                                              margins);
                controls = Pairs::count_complete(a + case_step, b_controls, study.control_words,
                                                 study.controls, first.margins + 2,
                                                 margins + 2 * kGroupMarkers);
            } else {
                cases = Pairs::template count<kGroupPlanes>(a, b, study.case_words);
                controls = Pairs::template count<kGroupPlanes>(a + case_step, b_controls,
                                                               study.control_words);
            }
            const auto sums = Pairs::sum_cells(study, cases, controls);
            Pairs::write_codes(study, sums, out + g * kGroupMarkers + lane);
        }
    }
}

}  // namespace vort
