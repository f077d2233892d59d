// The phenotypes of all data sets of a run.
//
// Row 0 is observed; every other row shuffles the one before it by a random order of the
// individuals, or of those of each cluster in turn, n draws of the generator each. Where each row's
// draws begin is known beforehand, so the orders are drawn side by side and only applied one after
// the other.
//
// A row takes one bit for each individual where the phenotypes have two values, as those of a
// case-control study do, and two bytes otherwise.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numeric/clusters.h"
#include "numeric/generator.h"

namespace vort {

class PhenotypeRows {
  public:
    // One row. Phenotypes are shuffled within the clusters of the individuals.
    explicit PhenotypeRows(std::span<const short> observed, Clusters clusters = {});

    // Adds `count` rows, drawn from `generator` on, which is left behind the last draw.
    void permute(int count, Generator& generator, int threads);

    // Adds a row as it is given.
    void add(std::span<const short> phenotypes);

    int individuals() const { return individuals_; }
    int count() const { return count_; }
    const Clusters& clusters() const { return clusters_; }

    // Row r, out[0 .. out.size()-1], at most `individuals()` of them.
    void row(int r, std::span<short> out) const;
    std::vector<short> row(int r) const;

    // The plane of row r's cases (phenotype 1), plane_words(individuals) words.
    void cases(int r, std::uint64_t* words) const;

    // Bytes that so many rows take, at least.
    static double bytes(double individuals, double rows) { return individuals / 8 * rows; }

  private:
    bool in_bits() const { return values_.size() == 2; }
    std::size_t words() const;
    void add_codes();
    void unpack_all();

    int individuals_;
    Clusters clusters_;
    int count_ = 0;
    std::vector<short> values_;        // those of the bits 0 and 1; none where rows are not bits
    std::vector<std::uint64_t> bits_;  // row after row
    std::vector<short> phenotypes_;    // row after row
    std::vector<short> last_;          // the last row: places in values_ where there are any
};

}  // namespace vort
