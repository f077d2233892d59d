// The design matrix as a text file, "output_X_Y.txt": a row for each individual, of the response
// and a value for each column, then a trailer "para ROWS COLUMNS" and the records of the columns.
#pragma once

#include <optional>
#include <string>

#include "common/diagnostics.h"

namespace vort {

struct DesignSize {
    int rows = 0;
    int columns = 0;  // may be negative, as rows may: what the trailer says
};

// What the trailer says; nothing where the file has none.
std::optional<DesignSize> read_design_size(const std::string& path);

// Whether the file has as many bytes as so many values take; of one that cannot be opened, no.
bool can_hold(const std::string& path, const DesignSize& size);

struct DesignLayout {
    DesignSize size;
    bool has_header = false;      // columns + 2 words to skip
    bool has_row_labels = false;  // a word to skip in front of each row
};

// Reads X[j][i] and Y[i]. A value that is no number is told, and taken as 0; reading on behind it
// throws Stop, as a file that cannot be opened or is too short does.
void read_design(const std::string& path, const DesignLayout& layout, double** X, double* Y,
                 Diagnostics& diagnostics);

}  // namespace vort
