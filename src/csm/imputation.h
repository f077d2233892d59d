// Missing genotypes, filled in for the design matrix.
//
// A missing genotype is drawn from the frequencies of its marker. Markers are gone through in the
// order of their ranks and, within a marker, individuals in the order of the data set, one draw for
// each missing genotype: so where the draws of a marker begin is known, and only those are made
// that somebody looks at.
#pragma once

#include <vector>

#include "csm/builder_data.h"
#include "numeric/generator.h"

namespace vort {

class Imputation {
  public:
    // The draws of all markers begin at `start`. `data` is not owned.
    Imputation(const BuilderData& data, const Generator& start) : data_(data), start_(start) {}

    // Codes 0 to 2 of a ranked marker (from 0), by place.
    std::vector<signed char> codes(int marker) const;

    // Numbers drawn for all markers together.
    std::int64_t draws() const { return data_.missing_before(data_.markers()); }

  private:
    const BuilderData& data_;
    Generator start_;
};

}  // namespace vort
