// Prepared files: a data set's phenotypes and its best-ranked markers, kept for a later run.
//
// The first line holds the phenotypes, a digit and a blank each; then comes a line for each of the
// best markers: the column (from 0) and the eight genotype counts of the five-model test, cases
// first, each followed by a tab. The name tells the data set's number and the share of missing
// genotypes that the ranking allowed: prefix + "prepare_data0_0.050000.txt".
#pragma once

#include <span>
#include <string>
#include <vector>

#include "common/diagnostics.h"
#include "genotypes/genotypes.h"
#include "numeric/clusters.h"

namespace vort {

std::string prepared_file_name(const std::string& prefix, int data_set);

// Writes the file of one data set; `best` holds columns (from 0) by rank. A file that cannot be
// opened stops the run.
void write_prepared_file(const std::string& path, const Genotypes& genotypes,
                         std::span<const short> phenotypes, std::span<const int> best,
                         Diagnostics& diagnostics);

struct PreparedDataSet {
    std::vector<short> phenotypes;
    std::vector<int> best;
};

// Reads a file of so many individuals and best markers out of `markers`; what is wrong with it is
// told and guessed at. A file that cannot be opened stops the run.
PreparedDataSet read_prepared_file(const std::string& path, int individuals, int best, int markers,
                                   Diagnostics& diagnostics);

// Throws InputError where a file is not one of this study: the phenotypes are others (of the
// observed data set, or other than as many cases in each cluster), or it has not so many sound
// marker lines.
void require_prepared_for(const std::string& path, std::span<const short> observed,
                          const Clusters& clusters, int best, int markers, bool is_observed);

}  // namespace vort
