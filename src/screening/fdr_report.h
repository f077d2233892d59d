// The false-discovery-rate report, made where `orginal_data` and `write_FDR_result` are both set.
#pragma once

#include <vector>

#include "common/output_file.h"
#include "screening/marker_pvalues.h"

namespace vort {

// The Benjamini-Hochberg count: the largest k whose k-th smallest p-value is at most
// k * level / divisor / Marker, 0 where there is none. divisor 1 leaves the level as it is.
int false_discovery_count(const std::vector<double>& pvalue, const std::vector<int>& order,
                          double level, double divisor);

// "FDR_results.txt" and the same on the console.
class FdrReport {
  public:
    // Opens the file; a failure ends the program.
    FdrReport();

    void write(const MarkerPvalues& all, const std::vector<int>& minimum_order);

  private:
    OutputFile file_;
};

}  // namespace vort
