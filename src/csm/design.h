// The design matrix of one data set: what the builder hands to the selector.
//
// A row for each individual, in the builder's order, with the centred phenotype; a 0/1 column for
// each group of each kept marker set that has one (cluster_record.h). The phenotype has six
// decimals, and the shares of the records six significant digits, as in the text that the hand-over
// is known by; text() gives that text.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "csm/builder_data.h"
#include "csm/cluster_record.h"
#include "csm/imputation.h"

namespace vort {

class Design {
  public:
    // `records` in the order in which they were kept.
    Design(const BuilderData& data, const Imputation& imputation,
           std::span<const ClusterRecord> records);

    int individuals() const { return static_cast<int>(response_.size()); }
    int columns() const { return static_cast<int>(columns_.size()); }

    // By place, rounded.
    std::span<const double> response() const { return response_; }
    // 0 or 1 for each individual.
    std::span<const unsigned char> column(int b) const { return columns_[b]; }

    // With their shares rounded.
    std::span<const ClusterRecord> records() const { return records_; }

    // A line for each individual, a trailer with the dimensions, and the records as text blocks:
    //
    //     0.550000 1 0 0
    //     -0.450000 0 0 1
    //     ...
    //     para  40 3
    //     <number 0>
    //     ...
    std::string text() const;

  private:
    void add_columns(const ClusterRecord& record, const Imputation& imputation);

    std::vector<double> response_;
    std::vector<std::vector<unsigned char>> columns_;
    std::vector<ClusterRecord> records_;
};

}  // namespace vort
