// The points of the Manhattan plot: all markers of a small study, an even part of a large one's.
//
// Of more than 50,000 markers the points with p >= 0.001 are thinned while they come, in 30 bands
// of a tenth of a power of ten. A band keeps every s-th marker in the order of the genome; when it
// is full, every second one goes and s doubles. At the end at most 700 of a band stay, evenly
// spaced among those, so that all bands are equally dense where a single share for all of them
// would leave the upper ones bare. Points with p < 0.001 and those of the model are never left out;
// where there are very many of them, fewer of the others stay, so that the page keeps its size.
//
// Memory: 42,000 points and those that always stay.
#pragma once

#include <array>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "results/marker_row.h"

namespace vort {

struct MarkerPoint {
    long order = 0;  // from 0, of the rows that came
    int chromosome = 0;
    long position = 0;
    int rank = 0;
    int alleles = 0;  // of the pairs of allele names seen
    char model = '-';
    bool in_model = false;
    double p = 1;
    double emp2 = kNotAvailable;
    std::string name;
};

class MarkerPoints {
  public:
    static constexpr long kUnthinned = 50'000;
    static constexpr double kAlwaysKept = 1e-3;

    explicit MarkerPoints(long markers);  // how many will come

    // Dropped markers have no point, and none has where the run took its rankings from files.
    static bool has_point(const MarkerRow& row) { return !row.dropped() && row.p_min >= 0; }

    // In the order of the genome.
    void add(const MarkerRow& row);

    long seen() const { return seen_; }
    long shown() const;
    bool thinned() const { return thin_; }
    int chromosomes() const { return int(extents_.size()); }

    // Columns: "position" counts on from the point before, within a run of one chromosome; "p" is
    // 1000 e + m for m/100 * 10^-e. EMP2 stands only for the points that have one below 1.
    nlohmann::json columns() const;

  private:
    struct Band {
        std::vector<MarkerPoint> points;
        std::size_t bytes = 0;
        long seen = 0;
        long stride = 1;
    };
    struct Extent {
        long first = 0, last = 0, markers = 0;
    };

    static void add_to_band(Band& band, MarkerPoint point);
    std::vector<const MarkerPoint*> even_part(const Band& band) const;
    std::vector<const MarkerPoint*> in_order() const;

    bool thin_;
    long seen_ = 0;
    std::vector<MarkerPoint> kept_;  // always
    std::array<Band, 30> bands_;     // of -log10 p in tenths, from 0
    std::map<std::string, int> allele_pairs_;
    std::map<int, Extent> extents_;  // of all markers, by chromosome
};

}  // namespace vort
