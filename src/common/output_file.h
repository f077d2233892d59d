// Report and intermediate files whose loss is never silent.
#pragma once

#include <fstream>
#include <string>

#include "common/diagnostics.h"

namespace vort {

// Removes a file, if there is one; a directory of that name stays.
void remove_file(const std::string& path);

// An output stream to a file. A file that cannot be opened, or that could not be written to its
// end (a full disk), is told on standard error; what the program does about it is the caller's.
class OutputFile {
  public:
    enum class Mode { kTruncate, kAppend };

    // `diagnostics` is not owned.
    OutputFile(std::string path, Mode mode, Diagnostics& diagnostics);
    ~OutputFile() { close(); }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool is_open() const { return opened_; }
    std::ostream& stream() { return stream_; }

    template <typename T>
    OutputFile& operator<<(const T& value) {
        stream_ << value;
        return *this;
    }

    // Safe to call twice. False where the file could not be written to its end.
    bool close();

  private:
    Diagnostics& diagnostics_;
    std::string path_;
    std::ofstream stream_;
    bool opened_;
};

}  // namespace vort
