// Rows of text into packed columns, eight rows at a time.
//
// Rows come one after the other, columns are stored one after the other. A strip of eight rows is
// two bytes of every column. Its rows are read side by side, some thousand genotypes of each at a
// time, so that the codes stay in the processor's first caches on their way from characters to
// packed genotypes. Columns lie far apart in memory, and to reach each of them for two bytes takes
// longer than all the rest; so strips are kept, and sixteen of them stored together.
//
// Cost: for sixteen genotypes of four rows some forty operations, and one visit to every column for
// 128 rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "genotypes/genotype_row.h"

namespace vort {

constexpr int kStripRows = 8;
constexpr std::size_t kStripBytes = kStripRows / 4;  // of a column
constexpr std::size_t kStripsAtOnce = 16;

// The two bytes of each column; padded.
using PackedStrip = std::vector<std::uint16_t>;

PackedStrip packed_strip_for(int markers);

// Reads the rows' genotypes, at most kStripRows rows and `markers` of each. What a row does not
// give is missing. given[r] is how many genotypes row r gave.
void pack_strip(std::span<RowParser> rows, int markers, PackedStrip& packed, int* given);

// Where strips belong: their first byte of column 0, and the bytes from a column to the next.
struct StripPlace {
    unsigned char* first;
    std::size_t stride;
    std::size_t bytes;  // of a column that are the strips'; the last strip may have only one
};

// Writes up to kStripsAtOnce consecutive strips to their columns.
void store_strips(std::span<const PackedStrip* const> strips, int markers, const StripPlace& place);

}  // namespace vort
