// The model of the observed data set: its base learners, and the importance of their markers.
#pragma once

#include <vector>

#include "common/settings.h"
#include "ensemble/base_learner.h"
#include "ensemble/model_stage.h"

namespace vort {

struct ObservedModel {
    bool exists = false;
    double statistic = 0.5;  // S_0; 0.5 where there is no model
    std::vector<BaseLearner> learners;
    std::vector<double> importance;  // of ranks 1 .. m; element 0 means nothing
    std::vector<char> selected;      // ranks of positive importance, elements 0 .. m
};

// From the observed data set as it was modelled; without a design where that stopped.
ObservedModel observed_model(const ModelledDataSet& modelled, const BuilderSettings& settings,
                             Transcript& out);

}  // namespace vort
