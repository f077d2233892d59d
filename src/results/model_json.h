// model.json: the model of a run and what it rests on; docs/model.schema.json describes it.
//
// Everything in it follows from the input and the options, so that the same run gives the same
// bytes. Risks: the fitted risk of an individual is the intercept plus the differences of all base
// learners whose cells it is in.
#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string>

#include "ensemble/result.h"
#include "results/marker_rows.h"
#include "results/run_record.h"
#include "study/study.h"
#include "vort/analysis.h"

namespace vort {

// Nothing is owned.
struct ModelDescription {
    std::string version;  // of the program
    StudyFormat format;
    const Study& study;     // names and account; its genotypes may have moved into `data`
    const StudyData& data;  // as it was analysed
    const StudyParameters& parameters;
    const Result& result;
    const RunRecord& record;
    const MarkerRows& rows;
    double lambda_gc = kNotAvailable;  // of the additive test
};

nlohmann::ordered_json model_json(const ModelDescription& run);

// Throws InputError where the file cannot be read or is no such description.
nlohmann::json read_model(const std::string& path);

}  // namespace vort
