// Values of tab-separated tables, with NA for what is not available.
#pragma once

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "common/transcript.h"

namespace vort {

inline constexpr std::string_view kNA = "NA";

// Appends a tab and the value, with six significant digits.
inline void put_number(Transcript& out, double value) {
    out << '\t';
    if (std::isnan(value)) {
        out << kNA;
    } else {
        out << general(value);
    }
}

// The value as a reader of the table gets it.
inline double as_written(double value) {
    return std::isnan(value) ? value : as_read_back(general(value));
}

// The lines of such a table, which `header` must begin. Throws InputError where the file cannot be
// read, and where a line or a value is not as expected.
class TableReader {
  public:
    // `text`: the whole file, which outlives the reader.
    TableReader(std::string path, std::string_view text, std::string_view header);

    bool next();
    // Column c of the line, from 0.
    std::string_view word(std::size_t c) const { return words_[c]; }
    double number(std::size_t c) const;  // not a number for NA
    // `na` for NA; other numbers are in the range.
    long whole(std::size_t c, long na, long least, long most) const;
    double share(std::size_t c) const;  // 0 to 1, or not a number for NA

  private:
    [[noreturn]] void fail(std::string_view found, std::string_view expected) const;

    std::string path_;
    std::string_view rest_;
    std::vector<std::string_view> words_;
    std::size_t columns_;
    long line_ = 0;
};

// The whole of a file, decompressed where it begins as a gzip file does. Throws InputError.
std::string read_whole_file(const std::string& path);

// The whole of a file as it is. Throws InputError, which says what was expected.
std::string read_bytes(const std::string& path, const char* expected);

// Brackets of a JSON text that are open at once, at most. Names may hold brackets, too: those in
// strings nest nothing.
int nesting_of(std::string_view json);

}  // namespace vort
