// A model as far as a prediction needs it: markers, groups of genotypes, differences in risk.
//
// The fitted risk of an individual is the intercept plus the differences of all base learners that
// it has; it has one where its genotypes are among the learner's cells. Where a genotype is missing
// it may still be plain, since all genotypes that are possible lead to the same answer; else the
// learner adds its difference times the share of the study that had it.
#pragma once

#include <array>
#include <bitset>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "genotypes/marker_info.h"
#include "results/marker_row.h"

namespace vort {

struct RiskLearner {
    int id = 0;                 // as reported, from 1
    int size = 0;               // markers: 1 or 2
    std::array<int, 2> marker;  // of the model's, from 0; `size` of them
    std::bitset<9> cells;       // genotype codes, 0 to 2; of a pair 3 x first + second
    double difference = 0;      // in risk
    double share = 0;           // of those of the study who have the genotypes
};

// Without learners where there is no model: risks are then not available.
struct RiskModel {
    double intercept = kNotAvailable;
    double study_share = kNotAvailable;  // of cases, in the study that the model was made from
    // Whether chromosomes and positions are those of the genome: a study directory and a recoding
    // without a .bim have none.
    bool has_places = true;
    std::vector<MarkerInfo> markers;  // each once, as the learners come to them
    std::vector<RiskLearner> learners;
};

// Of model.json, whose path is for messages. Throws InputError where it holds no model, or one that
// cannot be applied.
RiskModel risk_model_of(const nlohmann::json& model, const std::string& path);

}  // namespace vort
