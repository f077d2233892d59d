// The quick tests of pairs from bit counts, eight pairs side by side; see pair_counts.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "csm/pair_code.h"
#include "numeric/instructions.h"

namespace vort {

// Markers that are counted against another one at a time.
constexpr int kGroupMarkers = 8;

// Planes of a marker: genotype 1, genotype 2, genotype known.
constexpr int kGroupPlanes = 3;

// Of a marker: cases with genotype 1 and 2, then controls with genotype 1 and 2.
constexpr int kMargins = 4;

// What all pairs of a study have in common. The cases fill whole words, then the controls do.
struct PairStudy {
    std::size_t case_words;
    std::size_t control_words;
    std::uint64_t cases;
    std::uint64_t controls;
    double case_step;      // phenotype of a case less that of a control
    double control_value;  // phenotype of a control
    double individuals;
    double scale;  // units of a PairCode for each unit of a sum of squares
};

// One marker: the planes of its first word, then those of the second, and so on.
struct FirstMarker {
    const std::uint64_t* words;
    const std::uint64_t* margins;  // kMargins
    bool complete;                 // no genotype is missing
};

// Groups of eight markers: each word and each margin of the eight next to each other.
struct MarkerGroups {
    const std::uint64_t* words;
    const std::uint64_t* margins;
    const unsigned char* complete;  // of each group: no marker misses a genotype
    std::size_t count;
};

template <Instructions kInstructions>
struct PairCountKernel {
    // out[8 g + l] for marker l of group g.
    static void codes(const PairStudy& study, const FirstMarker& first, const MarkerGroups& seconds,
                      PairCode* out);
};

}  // namespace vort
