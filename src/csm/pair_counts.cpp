#include "csm/pair_counts.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "common/parallel.h"
#include "csm/pair_count_kernel.h"
#include "csm/pair_numbers.h"

namespace vort {

namespace {

constexpr int kWordBits = 64;
constexpr int kTileRows = 32;
constexpr std::size_t kBlockBytes = 256 * 1024;

// Neighbouring individuals of the same class.
struct Run {
    int begin;
    int length;
};

std::vector<Run> runs_of(std::span<const double> phenotype, double value) {
    std::vector<Run> runs;
    const int n = static_cast<int>(phenotype.size());
    for (int i = 0; i < n; ++i) {
        if (phenotype[i] != value) continue;
        if (runs.empty() || runs.back().begin + runs.back().length != i) runs.push_back({i, 0});
        ++runs.back().length;
    }
    return runs;
}

// Bits at .. at + length - 1 of a plane, at most 64 of them.
std::uint64_t bits_at(const std::uint64_t* plane, int at, int length) {
    const int shift = at % kWordBits;
    const std::uint64_t* const word = plane + at / kWordBits;
    std::uint64_t bits = *word >> shift;
    if (shift + length > kWordBits) bits |= word[1] << (kWordBits - shift);
    return length == kWordBits ? bits : bits & ((std::uint64_t{1} << length) - 1);
}

void put_bits(std::uint64_t* plane, int at, int length, std::uint64_t bits) {
    const int shift = at % kWordBits;
    std::uint64_t* const word = plane + at / kWordBits;
    *word |= bits << shift;
    if (shift + length > kWordBits) word[1] |= bits >> (kWordBits - shift);
}

// The bits of the runs, next to each other from the start of `out`, which is all 0.
void gather(const std::uint64_t* plane, const std::vector<Run>& runs, std::uint64_t* out) {
    int to = 0;
    for (const auto& [begin, length] : runs) {
        for (int done = 0; done < length; done += kWordBits) {
            const int part = std::min(kWordBits, length - done);
            put_bits(out, to, part, bits_at(plane, begin + done, part));
            to += part;
        }
    }
}

std::uint64_t count_bits(std::span<const std::uint64_t> words) {
    std::uint64_t count = 0;
    for (const std::uint64_t word : words) count += static_cast<std::uint64_t>(std::popcount(word));
    return count;
}

// The markers as the kernel takes them, in groups of eight; the last group is filled up with
// markers that nobody's genotype is known of.
class MarkerLayout {
  public:
    MarkerLayout(const MarkerPlanes& markers, std::span<const double> phenotype,
                 const TwoValues& values, double sigma, int threads)
        : cases_(runs_of(phenotype, values.case_value)),
          controls_(runs_of(phenotype, values.control_value)),
          study_{plane_words(values.cases),
                 plane_words(values.controls),
                 static_cast<std::uint64_t>(values.cases),
                 static_cast<std::uint64_t>(values.controls),
                 values.case_value - values.control_value,
                 values.control_value,
                 static_cast<double>(phenotype.size()),
                 static_cast<double>(1 << kFractionBits) / sigma},
          words_(study_.case_words + study_.control_words),
          groups_((static_cast<std::size_t>(markers.markers()) + kGroupMarkers - 1) /
                  kGroupMarkers),
          planes_(groups_ * kGroupMarkers * kGroupPlanes * words_),
          margins_(groups_ * kGroupMarkers * kMargins),
          complete_(groups_, 1),
          marker_complete_(groups_ * kGroupMarkers, 1) {
        for_each_index(threads, groups_, [&](std::size_t g) { fill_group(markers, g); });
    }

    const PairStudy& study() const { return study_; }
    std::size_t groups() const { return groups_; }
    std::size_t group_bytes() const {
        return words_ * kGroupPlanes * kGroupMarkers * sizeof(std::uint64_t);
    }

    MarkerGroups groups(std::size_t begin, std::size_t count) const {
        return {planes_.data() + begin * kGroupMarkers * kGroupPlanes * words_,
                margins_.data() + begin * kGroupMarkers * kMargins, complete_.data() + begin,
                count};
    }

    // Marker `marker` on its own: its margins, then its words.
    std::vector<std::uint64_t> single(std::size_t marker) const {
        const auto [words, margins, complete, count] = groups(marker / kGroupMarkers, 1);
        const std::size_t lane = marker % kGroupMarkers;
        std::vector<std::uint64_t> out;
        out.reserve(kMargins + kGroupPlanes * words_);
        for (std::size_t k = 0; k < kMargins; ++k) out.push_back(margins[k * kGroupMarkers + lane]);
        for (std::size_t w = 0; w < kGroupPlanes * words_; ++w) {
            out.push_back(words[w * kGroupMarkers + lane]);
        }
        return out;
    }
    bool is_complete(std::size_t marker) const { return marker_complete_[marker] != 0; }

  private:
    void fill_group(const MarkerPlanes& markers, std::size_t g) {
        const int first = static_cast<int>(g) * kGroupMarkers;
        const int last = std::min(first + kGroupMarkers, markers.markers());
        for (int marker = first; marker < last; ++marker) fill(markers, marker);
    }

    void fill(const MarkerPlanes& markers, int marker) {
        const auto [one, two, missing] = markers.planes(marker);
        std::vector<std::uint64_t> known(markers.words());
        for (std::size_t w = 0; w < known.size(); ++w) known[w] = ~missing[w];
        const auto j = static_cast<std::size_t>(marker);
        const std::uint64_t* const planes[kGroupPlanes] = {one, two, known.data()};
        std::uint64_t known_individuals = 0;
        for (std::size_t p = 0; p < kGroupPlanes; ++p) {
            std::vector<std::uint64_t> classes(words_);
            gather(planes[p], cases_, classes.data());
            gather(planes[p], controls_, classes.data() + study_.case_words);
            place(j, p, classes);
            const std::span<const std::uint64_t> all(classes);
            const std::uint64_t cases = count_bits(all.first(study_.case_words));
            const std::uint64_t controls = count_bits(all.subspan(study_.case_words));
            known_individuals = cases + controls;
            if (p < 2) {
                margin(j, p) = cases;
                margin(j, p + 2) = controls;
            }
        }
        if (known_individuals != study_.cases + study_.controls) {
            marker_complete_[j] = 0;
            complete_[j / kGroupMarkers] = 0;
        }
    }

    void place(std::size_t j, std::size_t p, const std::vector<std::uint64_t>& classes) {
        std::uint64_t* const group =
            planes_.data() + j / kGroupMarkers * kGroupMarkers * kGroupPlanes * words_;
        for (std::size_t w = 0; w < words_; ++w) {
            group[(w * kGroupPlanes + p) * kGroupMarkers + j % kGroupMarkers] = classes[w];
        }
    }

    std::uint64_t& margin(std::size_t j, std::size_t k) {
        return margins_[(j / kGroupMarkers * kMargins + k) * kGroupMarkers + j % kGroupMarkers];
    }

    std::vector<Run> cases_;
    std::vector<Run> controls_;
    PairStudy study_;
    std::size_t words_;
    std::size_t groups_;
    std::vector<std::uint64_t> planes_;
    std::vector<std::uint64_t> margins_;
    std::vector<unsigned char> complete_;  // of the groups
    std::vector<unsigned char> marker_complete_;
};

// Counts pairs of rows first .. last-1.
class TileCounter {
  public:
    TileCounter(const MarkerLayout& layout, int m, Instructions set, PairCode* codes)
        : layout_(layout),
          numbers_(m),
          m_(m),
          count_(kernel_for(set, []<Instructions I>() { return PairCountKernel<I>::codes; })),
          codes_(codes) {}

    void count(int first, int last) const {
        std::vector<std::vector<std::uint64_t>> rows;
        for (int a = first; a < last; ++a) rows.push_back(layout_.single(a));
        const std::size_t block = std::max<std::size_t>(1, kBlockBytes / layout_.group_bytes());
        std::vector<PairCode> found(block * kGroupMarkers);
        for (std::size_t g = (first + 1) / kGroupMarkers; g < layout_.groups(); g += block) {
            const MarkerGroups seconds = layout_.groups(g, std::min(block, layout_.groups() - g));
            for (int a = first; a < last; ++a) {
                const std::uint64_t* const row = rows[a - first].data();
                count_(layout_.study(), {row + kMargins, row, layout_.is_complete(a)}, seconds,
                       found.data());
                store(a, static_cast<int>(g) * kGroupMarkers, found,
                      static_cast<int>(seconds.count) * kGroupMarkers);
            }
        }
    }

  private:
    // found[l] is the pair of a and begin + l; those with begin + l > a are pairs of a's row.
    void store(int a, int begin, const std::vector<PairCode>& found, int size) const {
        const int from = std::max(begin, a + 1);
        const int to = std::min(begin + size, m_);
        if (from >= to) return;
        std::copy(found.data() + (from - begin), found.data() + (to - begin),
                  codes_ + numbers_.before_row(a) + (from - a - 1));
    }

    const MarkerLayout& layout_;
    PairNumbers numbers_;
    int m_;
    void (*count_)(const PairStudy&, const FirstMarker&, const MarkerGroups&, PairCode*);
    PairCode* codes_;
};

}  // namespace

std::optional<TwoValues> two_values(std::span<const double> phenotype) {
    if (phenotype.empty()) return std::nullopt;
    const auto [low, high] = std::minmax_element(phenotype.begin(), phenotype.end());
    TwoValues values{*high, *low, 0, 0};
    for (const double y : phenotype) {
        values.cases += y == values.case_value ? 1 : 0;
        values.controls += y == values.control_value ? 1 : 0;
    }
    const int n = static_cast<int>(phenotype.size());
    if (values.cases + values.controls != n || values.controls == n) return std::nullopt;
    return values;
}

std::span<const PairCode> count_pairs(const MarkerPlanes& markers,
                                      std::span<const double> phenotype, const TwoValues& values,
                                      double sigma, int threads, Instructions set,
                                      PairCodeRoom& room) {
    const int m = markers.markers();
    const MarkerLayout layout(markers, phenotype, values, sigma, threads);
    const std::span<PairCode> codes = room.take(static_cast<std::size_t>(PairNumbers(m).count()));
    const TileCounter counter(layout, m, set, codes.data());
    const std::size_t tiles = (static_cast<std::size_t>(m) + kTileRows - 1) / kTileRows;
    for_each_index(threads, tiles, [&](std::size_t t) {
        const int first = static_cast<int>(t) * kTileRows;
        counter.count(first, std::min(first + kTileRows, m));
    });
    return codes;
}

}  // namespace vort
