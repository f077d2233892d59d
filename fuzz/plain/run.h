// A whole run as docs/method.md defines it, as simply as can be: no kernels, no bounds, no batches,
// one thread, one number drawn after the other.
//
// What has one form only in the engine is taken from there: p-values of a table of counts and of a
// statistic, the index sort, texts of records and reports.
#pragma once

#include <string>
#include <vector>

#include "ensemble/result.h"
#include "plain/builder.h"
#include "plain/tiny_study.h"

namespace vort::fuzz {

struct PlainDataSet {
    std::vector<short> phenotypes;
    std::vector<int> ranking;  // all columns
    std::vector<double> pvalues;
    PlainDesign design;
    double statistic = 2147483647.0;  // S
    std::string coefficients;         // "beta.txt"
    int learners = 0;
};

struct PlainRun {
    explicit PlainRun(const TinyStudy& study);

    std::string console;  // the elapsed seconds masked
    std::vector<PlainDataSet> data_sets;
    int modelled = 0;     // data sets that have their model
    std::string stopped;  // what the run stops with, if it does
    bool stops = false;
    Result result;
    std::string pvalues;  // "P_value.txt"
    std::string report;   // "Final_result.txt"
    // What a run that stops leaves.
    std::string left_design;
    std::string left_coefficients;
};

}  // namespace vort::fuzz
