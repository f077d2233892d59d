// The models of a task's data sets.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ensemble/observed_model.h"
#include "parts/screen_part.h"
#include "parts/task.h"

namespace vort {

// Of one data set.
struct ModelledData {
    double statistic = kNoStatistic;  // S
    int learners = 0;                 // base learners in the model
    std::string console;              // what building and selection write
};

struct ModelPart {
    // The task's, in order; of the observed data set alone where that has no model, and none where
    // another task knew that.
    std::vector<ModelledData> data_sets;
    ObservedModel observed;  // of the task that has the observed data set
};

// `start`: the draws of the task's first data set, and what stands on the console before it.
ModelPart model_task(const TaskInput& input, const Task& task, const TaskRows& rows,
                     ScreenPart screened, ModelStart start);

// As bytes, and back. Reading throws MalformedBytes where the bytes cannot be of such a task.
std::string bytes_of(const ModelPart& part);
ModelPart model_part_of(std::string_view bytes, const PartSizes& sizes);

}  // namespace vort
