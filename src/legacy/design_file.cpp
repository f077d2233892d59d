#include "legacy/design_file.h"

#include <algorithm>
#include <filesystem>

#include "common/stop.h"
#include "common/text_input.h"

namespace vort {

namespace {

class DesignFile {
  public:
    DesignFile(const std::string& path, Diagnostics& diagnostics)
        : path_(path), input_(path), diagnostics_(diagnostics) {
        if (!input_.is_open()) stop("When open file " + path_ + ", find error\n");
    }

    void skip_words(int count) {
        std::string word;
        for (int w = 0; w < count && input_.good(); ++w) input_.word(word);
    }

    // What is no number leaves a 0 and is found out by the next call.
    double value() {
        if (!input_.good()) stop("find error input file=" + path_ + '\n');
        double number = 0.0;
        if (!input_.real(number)) {
            diagnostics_.say("design matrix values that are no numbers", path_,
                             input_.line_number(), "expected a number; 0 is taken");
        }
        return number;
    }

  private:
    const std::string& path_;
    TextInput input_;
    Diagnostics& diagnostics_;
};

// Reads on behind the first 'p', which begins the trailer: the matrix holds numbers only.
void skip_to_trailer(TextInput& input) {
    int c = input.get();
    while (c != EOF && c != 'p') c = input.get();
}

}  // namespace

std::optional<DesignSize> read_design_size(const std::string& path) {
    TextInput input(path);
    skip_to_trailer(input);
    std::string word;
    input.word(word);
    if (word.substr(0, 3) != "ara") return std::nullopt;
    DesignSize size;
    input.integer(size.rows);
    input.integer(size.columns);
    return size;
}

// A value takes a digit and a blank. Columns of no rows take none, but each has a record.
bool can_hold(const std::string& path, const DesignSize& size) {
    std::error_code failure;
    const auto bytes = std::filesystem::file_size(path, failure);
    const double values = static_cast<double>(size.rows) * (size.columns + 1.0);
    const double least = std::max(2 * values - 1, static_cast<double>(size.columns));
    return !failure && least <= static_cast<double>(bytes);
}

void read_design(const std::string& path, const DesignLayout& layout, double** X, double* Y,
                 Diagnostics& diagnostics) {
    DesignFile input(path, diagnostics);
    const auto [rows, columns] = layout.size;
    if (layout.has_header) {
        input.skip_words(1);
        input.skip_words(columns + 1);
    }
    for (int i = 0; i < rows; ++i) {
        if (layout.has_row_labels) input.skip_words(1);
        Y[i] = input.value();
        for (int j = 0; j < columns; ++j) X[j][i] = input.value();
    }
}

}  // namespace vort
