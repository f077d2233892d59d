#include "common/output_file.h"

#include <unistd.h>

#include <utility>

namespace vort {

void remove_file(const std::string& path) {
    ::unlink(path.c_str());
}

OutputFile::OutputFile(std::string path, Mode mode, Diagnostics& diagnostics)
    : diagnostics_(diagnostics),
      path_(std::move(path)),
      stream_(path_, mode == Mode::kAppend ? std::ios::app : std::ios::trunc),
      opened_(stream_.is_open()) {
    if (!opened_) {
        diagnostics_.say("files that could not be opened for writing", path_, 0,
                         "could not be opened for writing");
    }
}

bool OutputFile::close() {
    if (!stream_.is_open()) return opened_ && !stream_.fail();
    stream_.close();
    if (!stream_.fail()) return true;
    diagnostics_.say("files that could not be written", path_, 0,
                     "could not be fully written (is the disk full?)");
    return false;
}

}  // namespace vort
