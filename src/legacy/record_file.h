// Records of base learners, read back from their text blocks (csm/cluster_record.cpp).
//
// A block that contradicts itself throws Stop; one that lacks a part reads as none.
#pragma once

#include <memory>
#include <vector>

#include "legacy/best_cluster.h"
#include "legacy/tagged_file.h"

namespace vort {

// The record of block `number`; null where there is none.
std::unique_ptr<BestClusterInformation> read_record(Myfstream& file, int number);

// All records, by their numbers; null where there is none of a number.
std::vector<std::unique_ptr<BestClusterInformation>> read_records(Myfstream& file);

}  // namespace vort
