// Bytes of a fuzzer as a tiny study with its settings.
//
// Any bytes make a study: numbers are taken as residues, and past the end everything is 0. The
// first bytes are sizes and settings, then come the phenotypes, then the markers, each by a recipe:
// as many genotypes as there are individuals, or a twin of an earlier marker, a marker that does
// not vary, one that follows the phenotype. So ties are common, and a few bytes go a long way.
//
// How much work a study may ask for is bounded, since a kept set costs 500 orders of everybody:
// permutations beyond two are left out first, then sets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/settings.h"
#include "genotypes/marker_table.h"
#include "support/random_study.h"

namespace vort::fuzz {

struct TinyStudy {
    int individuals() const { return static_cast<int>(phenotypes.size()); }
    int markers() const { return static_cast<int>(columns.size()); }

    std::vector<short> phenotypes;
    testing::Columns columns;
    std::string parameters;  // "parameter.txt"
    Settings settings;       // what it says, and the clustering, which no file selects
    int threads = 1;
    int detail = 0;          // what to look at beside the run, any number
    bool odd_sizes = false;  // whether some parameter was replaced by an odd one
};

TinyStudy tiny_study(std::span<const std::uint8_t> bytes);

// Names m1, m2, ... on three chromosomes.
MarkerTable table_of(const TinyStudy& study);

// The study as files that the program takes: "parameter.txt", "dat1.txt" and
// "Chromosome_SNP_Name.txt" in `folder`, which is there and ends with a slash.
void write_study(const TinyStudy& study, const std::string& folder);

}  // namespace vort::fuzz
