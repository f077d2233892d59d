// The main report, "Final_result.txt".
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/settings.h"
#include "common/transcript.h"
#include "ensemble/result.h"
#include "genotypes/genotypes.h"
#include "genotypes/marker_table.h"

namespace vort {

// What the report shows beside the result. Nothing is owned.
struct ReportInput {
    const Settings& settings;
    const Genotypes& genotypes;
    std::span<const short> phenotypes;  // observed
};

// The report up to the marker names; most of it is echoed on the console, too.
std::string report_text(const ReportInput& input, const Result& result, Transcript& console);

// What of it is echoed: all but the beginning, of a result with base learners.
std::string report_body(const ReportInput& input, const Result& result, Transcript& console);

// The names of the model's markers, which end the report; whose they are: docs/method.md,
// section 10. A table that cannot be used stops the run.
std::string marker_names_text(const Settings& settings, const Result& result,
                              const MarkerTable& table);

}  // namespace vort
