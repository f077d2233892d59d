#include "common/output_file.h"

#include <utility>

#include "common/diagnostics.h"

namespace vort {

OutputFile::OutputFile(std::string path, Mode mode)
    : path_(std::move(path)),
      stream_(path_, mode == Mode::kAppend ? std::ios::app : std::ios::trunc),
      opened_(stream_.is_open()) {
    if (!opened_) {
        diagnose("files that could not be opened for writing", path_, 0,
                 "could not be opened for writing; its contents are lost");
    }
}

void OutputFile::close() {
    if (!stream_.is_open()) return;
    stream_.close();
    if (stream_.fail()) {
        diagnose("files that could not be written", path_, 0,
                 "could not be fully written (is the disk full?)");
    }
}

}  // namespace vort
