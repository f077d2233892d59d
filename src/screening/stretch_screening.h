// Screens a stretch of markers in a batch of data sets, from planes to the smallest p-values.
//
// Everything about a block of markers is done while its counts are in the first cache: planes of
// its genotypes, the counts of every data set's cases, the statistics of the four models, and the
// p-values that are needed. What remains is one smallest p-value for each marker and data set, and
// the short lists that the console shows.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "genotypes/genotypes.h"
#include "numeric/chi_square_lanes.h"
#include "numeric/instructions.h"
#include "screening/count_kernel.h"
#include "screening/five_model_kernel.h"
#include "screening/phenotype_rows.h"
#include "screening/screening_result.h"

namespace vort {

// Largest numbers of missing genotypes in cases and in controls that a marker is kept with.
struct MissingLimits {
    int cases;
    int controls;
};
MissingLimits missing_limits(GroupSizes sizes);

// What all data sets have in common.
struct ScreeningStudy {
    const Genotypes& genotypes;
    GroupSizes sizes;
    MissingLimits limits;
    Instructions instructions;
};

// The planes of the cases of a batch of data sets, padded to whole blocks of words.
class CasePlanes {
  public:
    // Rows first .. first + count - 1.
    CasePlanes(const PhenotypeRows& phenotypes, int first, int count);

    int count() const { return count_; }
    std::size_t words() const { return words_; }
    const std::uint64_t* plane(int d) const { return planes_.data() + d * words_; }
    const std::uint64_t* everybody() const { return planes_.data() + count_ * words_; }

  private:
    int count_;
    std::size_t words_;
    std::vector<std::uint64_t> planes_;
};

// The smallest p-values of a batch: a row of `markers` for each data set. Not owned.
struct MinimaRows {
    double* values;
    std::size_t markers;

    double* row(int d) const { return values + static_cast<std::size_t>(d) * markers; }
};

// Work space of one thread, for one batch.
class StretchScreening {
  public:
    static constexpr int kStretch = 2048;  // markers, at most

    // Both are not owned.
    StretchScreening(const ScreeningStudy& study, const CasePlanes& cases);

    // Columns first .. first + size - 1 (size <= kStretch): fills their elements of every row of
    // the minima, and findings[d] of data set d, which come empty.
    void screen(int first, int size, const MinimaRows& minima, std::span<Findings> findings);

  private:
    struct Model {
        int df;
        double statistic;
    };
    using Models = std::array<Model, kModels>;

    void count_block(int first, int columns);
    void load_tile(int first, int columns);
    void compute_block(int d);
    void test_marker(int d, int block, int slot);
    bool is_dropped(int slot) const;
    Models models_of(int slot) const;
    void list_significant(int slot, int marker, bool dropped, Findings& out) const;
    void queue_candidates(int slot, int tag);
    void list_minimum_significant(int d, const double* minima, int size);

    const ScreeningStudy& study_;
    const CasePlanes& cases_;
    ChiSquareQueue queue_;  // tags tell data set and marker, kStretch for each data set
    std::size_t tile_columns_;
    std::vector<std::uint64_t> tile_;     // three planes for each column
    std::vector<PlaneCounts> everybody_;  // of a block
    std::vector<PlaneCounts> counts_;     // of a block, for each data set
    MarkerBlock block_{};
    std::span<Findings> findings_;
    int first_ = 0;
};

}  // namespace vort
