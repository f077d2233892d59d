// permutations.tsv, a line for each data set, and quantiles.tsv, the screening's p-values by rank.
//
//     DATA_SET T P_MIN SNP LEARNERS       0 is observed; P_MIN over all markers, SNP has it
//     RANK P_MIN P_EXPECTED P_LOW P_HIGH  observed; median and 95 % of the permuted data sets
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "genotypes/marker_info.h"
#include "results/run_record.h"
#include "results/tables.h"

namespace vort {

// Values are as they are written. `has_model`: false where the observed data set has none, so that
// no other was tried.
std::vector<DataSetRow> data_set_rows(const RunRecord& record, std::span<const MarkerInfo> markers,
                                      bool has_model);

// A file that cannot be written to its end stops the run.
void write_data_set_file(const std::string& path, std::span<const DataSetRow> rows,
                         Diagnostics& diagnostics);
void write_quantile_file(const std::string& path, std::span<const QuantileRow> rows,
                         Diagnostics& diagnostics);

// Throw InputError where the file cannot be read or is no such table.
std::vector<DataSetRow> read_data_set_file(const std::string& path);
std::vector<QuantileRow> read_quantile_file(const std::string& path);

}  // namespace vort
