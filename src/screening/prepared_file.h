// Prepared files: a data set's phenotypes and its best-ranked markers, kept for a later run.
#pragma once

#include <vector>

namespace vort {

// Writes prepared file number (count of earlier writes) for the current `Y`; order[k] is the
// 1-based number of the marker at rank k = 1 .. Marker. The first `Save_marker_length` are kept.
// A file that cannot be opened ends the program.
void save_prepared_file(const std::vector<int>& order);

// Forgets how many prepared files were read and written. For tests.
void restart_prepared_files();

}  // namespace vort
