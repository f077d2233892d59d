// The clusters that permuted phenotypes keep to: --within.
//
// As in PLINK 1.9: a person whom the file does not name, or whose cluster is NA, is in none and
// keeps the phenotype. Clusters are those of the people that the filters leave.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "study/cohort.h"
#include "study/person_names.h"

namespace vort {

struct ClusterLabels {
    std::string column;       // title of the file's column; empty without a header
    std::vector<int> labels;  // of each person, as in Clusters
};

// Without a file everybody is alone. Told to `study`.
ClusterLabels read_cluster_labels(const ClusterSource& source, const PersonNames& names,
                                  std::size_t people, Study& study);

// Gives the study, whose phenotypes are there, its clusters, and tells of them. Throws InputError
// where no cluster has both cases and controls.
void take_clusters(const ClusterSource& source, const ClusterLabels& read, Study& study);

// The same once only these individuals are left, ascending.
void retake_clusters(std::span<const int> left, Study& study);

}  // namespace vort
