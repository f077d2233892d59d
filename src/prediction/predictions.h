// A model applied to individuals.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "genotypes/genotypes.h"
#include "prediction/marker_match.h"
#include "prediction/risk_model.h"

namespace vort {

class Predictions {
  public:
    Predictions(std::size_t people, std::size_t learners)
        : risk(people, 0), genotyped(people, 0), learners_(learners), has_(people * learners) {}

    // Each individual's: fitted risk, with the six digits that are written, and how many of the
    // model's markers it has a genotype of. Nothing keeps a risk within 0 and 1.
    std::vector<double> risk;
    std::vector<int> genotyped;

    // Whether individual i has base learner b, both from 0: 1, 0, or -1 where its genotypes leave
    // that open.
    signed char& has(std::size_t i, std::size_t b) { return has_[i * learners_ + b]; }
    signed char has(std::size_t i, std::size_t b) const { return has_[i * learners_ + b]; }
    std::size_t learners() const { return learners_; }

  private:
    std::size_t learners_;
    std::vector<signed char> has_;
};

// `matches`: of the model's markers, among the columns of the genotypes.
Predictions predict(const RiskModel& model, std::span<const MarkerMatch> matches,
                    const Genotypes& genotypes);

}  // namespace vort
