// The two reports of an analysis, "P_value.txt" and "Final_result.txt".
//
// Where both are there, both are whole and of the same run: earlier ones go when a run begins, new
// ones get their names when all of them is on the disk.
#pragma once

#include <array>
#include <string>

#include "common/diagnostics.h"

namespace vort {

inline constexpr std::array kReportNames = {"P_value.txt", "Final_result.txt"};

struct ReportTexts {
    std::string pvalues;
    std::string report;
};

// Removes earlier reports, and tries whether new ones can be written, so that nobody learns it
// after hours. Throws Stop where they cannot. `folder` is empty or ends with a slash.
void clear_reports(const std::string& folder, Diagnostics& diagnostics);

// Writes both, or throws Stop with status 1 and leaves neither.
void write_reports(const ReportTexts& texts, const std::string& folder, Diagnostics& diagnostics);

}  // namespace vort
