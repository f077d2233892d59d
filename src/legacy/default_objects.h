// The one set of objects that functions without an object of their own work on.
#pragma once

#include <optional>
#include <vector>

#include "common/diagnostics.h"
#include "genotypes/marker_table.h"

namespace vort {

struct DefaultObjects {
    DefaultObjects();

    Diagnostics diagnostics;             // to standard error
    std::vector<char> codes;             // what `X` points into
    std::vector<char*> rows;             // `X`
    std::vector<short> phenotypes;       // `Y`
    std::optional<MarkerTable> markers;  // once it was asked for
    int prepared_files_written = 0;
    int prepared_files_read = 0;
};

DefaultObjects& default_objects();

// Forgets the data set (`X`, `Y`, `exist_X_Y_data`), the marker table and the prepared files, so
// that the next call that wants them begins anew.
void reset_default_objects();

}  // namespace vort
