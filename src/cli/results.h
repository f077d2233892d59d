// What a run leaves in its folder, and the names of its files.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "common/diagnostics.h"
#include "results/model_json.h"
#include "study/holdout.h"

namespace vort {

// run.log comes last: where it is, the others are whole.
inline constexpr std::array kRunResults = {"P_value.txt",   "Final_result.txt", "FDR_results.txt",
                                           "console.txt",   "markers.tsv",      "markers.tsv.gz",
                                           "quantiles.tsv", "permutations.tsv", "holdout.tsv",
                                           "model.json",    "report.html",      "run.log"};

// Bytes that are no UTF-8, in a name or a path, are replaced.
std::string json_text(const nlohmann::ordered_json& value);

// Writes the tables, model.json (with lambda, which comes of the markers) and report.html into
// `folder`, which ends with a slash, and returns what stands in model.json. Where somebody was held
// back, holdout.tsv too. A file that cannot be written to its end stops the run.
nlohmann::json write_results(ModelDescription run, const std::string& folder, bool gzip,
                             int threads, Diagnostics& diagnostics,
                             const std::optional<HeldBack>& held_back = {});

// report.html anew from the other files in `from`, into `folder`; both end with a slash. Throws
// InputError where these cannot be read.
void write_report_page(const std::string& from, const std::string& folder,
                       Diagnostics& diagnostics);

}  // namespace vort
