// The rows of a text data set, read one after the other and remarked on.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "common/diagnostics.h"
#include "common/text_input.h"
#include "genotypes/text_data_set.h"

namespace vort {

// A diagnostic that waits for its turn.
struct Remark {
    std::string_view kind;  // a literal
    long line;              // 1-based; 0: none
    std::string text;
};

// Consecutive rows. Reused, so that its text keeps its memory.
struct RowStrip {
    struct Row {
        std::size_t from, size;  // of its genotypes in `text`
        long line;
        std::size_t remarks_before;  // how many of the remarks below come before the row's own
    };
    LongText text;
    std::vector<Row> rows;
    std::vector<Remark> remarks;  // on phenotypes
    int read_error = 0;           // a value of errno: the file failed behind these rows

    std::string_view genotypes_of(std::size_t r) const {
        return {text.memory.data() + rows[r].from, rows[r].size};
    }
};

class TextRows {
  public:
    // Opens the file and reads its header. Throws Stop where that fails.
    TextRows(const TextDataSet& settings, Diagnostics& diagnostics);

    // Reads up to `most` rows into `strip` and their phenotypes into phenotypes[0 ..], which stays
    // as it is where there is no row. Fewer than `most`: no further row is to be read.
    void read(int most, RowStrip& strip, short* phenotypes);

    // How many rows there were, said after the last one.
    void diagnose_number_of_rows();

    // Of the next character to be read.
    long line() const { return input_.line_number(); }

    // Throws Stop after saying why the file could not be read on.
    [[noreturn]] void fail(long line, int reason);

  private:
    static TextInput opened(const std::string& path, Diagnostics& diagnostics);
    void read_header();
    bool read_row(RowStrip& strip, short& phenotype);
    void say(std::string_view kind, long line, const std::string& text);

    const TextDataSet& settings_;
    Diagnostics& diagnostics_;
    TextInput input_;
    int rows_ = 0;
    bool ended_ = false;
};

// What is to be said about a row of `given` genotypes with `rest` behind them.
void remark_on_row(const TextDataSet& settings, long line, int given, bool lone_minus,
                   std::string_view rest, std::vector<Remark>& remarks);

}  // namespace vort
