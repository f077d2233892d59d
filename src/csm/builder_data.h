// One data set as the builder of base learners sees it.
//
// The n first individuals with the phenotypes of the data set, and its m best-ranked markers. The
// individuals are put in another order, which spreads the cases over both halves; everything after
// that goes by their places in this order, 0 .. n-1. Ranked markers count from 1 where they form
// marker sets, and from 0 as elements here. Missing genotypes are not filled in: no test and no
// clustering looks at an individual that misses one (imputation.h does, for the design matrix).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/settings.h"
#include "common/transcript.h"
#include "csm/marker_planes.h"
#include "genotypes/genotypes.h"
#include "numeric/clusters.h"

namespace vort {

// What the builder gets of a data set. Nothing is owned.
struct BuilderInput {
    const Genotypes& genotypes;
    std::span<const short> phenotypes;   // at least n
    std::span<const int> best;           // columns by rank, at least m
    const Clusters* clusters = nullptr;  // of the individuals, that permutations keep to
};

// Genotypes of a marker among all n individuals.
struct GenotypeFrequencies {
    int missing = 0;
    double of_0 = 0;  // share of code 0 among those that are not missing; not a number without any
    double of_1 = 0;
};

// A data set whose individuals are in their places and whose phenotype is centred. Its missing
// genotypes are filled in by whoever asks for them, so none is counted here.
struct PlacedData {
    MarkerPlanes planes;
    std::vector<double> phenotype;
    double sigma;
    int cases;
    bool quantitative;
};

class BuilderData {
  public:
    // `quantitative`: whether a data set before this one had a phenotype other than 0 and 1.
    BuilderData(const BuilderInput& input, const BuilderSettings& settings, bool quantitative,
                int threads);
    explicit BuilderData(PlacedData placed);

    int individuals() const { return static_cast<int>(y_.size()); }
    int markers() const { return static_cast<int>(frequencies_.size()); }

    // Individual (from 0, in the data set's order) at each place.
    std::span<const int> order() const { return order_; }
    // Phenotype at each place, centred.
    std::span<const double> phenotype() const { return y_; }
    // Places that permutations of the phenotype exchange.
    const Clusters& clusters() const { return clusters_; }
    double mean() const { return mean_; }    // of the phenotype, before it was centred
    double sigma() const { return sigma_; }  // its variance, divisor n
    int cases() const { return cases_; }     // individuals with a positive phenotype, before
    bool quantitative() const { return quantitative_; }  // here or before

    // Genotypes by place.
    const MarkerPlanes& planes() const { return planes_; }
    const GenotypeFrequencies& frequencies(int marker) const { return frequencies_[marker]; }
    // Missing genotypes of the markers ranked before this one; of all where marker == markers().
    std::int64_t missing_before(int marker) const { return missing_before_[marker]; }

    // Whether there is a case and a control, and nothing else: all that the fast forms ask for.
    bool is_case_control() const;

    // Bytes that an object takes.
    static double bytes(double individuals, double markers) {
        return individuals * (32 + markers * 4 / 8);
    }

  private:
    void spread_cases();
    void centre();
    void take_marker(const BuilderInput& input, int marker, std::vector<signed char>& codes);

    std::vector<int> order_;
    Clusters clusters_;
    std::vector<double> y_;
    double mean_ = 0;
    double sigma_ = 0;
    int cases_ = 0;
    bool quantitative_;
    MarkerPlanes planes_;
    std::vector<GenotypeFrequencies> frequencies_;
    std::vector<std::int64_t> missing_before_;
};

// Whether a phenotype is taken for something other than a control (0) or a case (1).
bool is_quantity(short phenotype);

}  // namespace vort
