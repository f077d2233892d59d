#include "common/line_writer.h"

#include <ostream>

namespace vort {

void LineWriter::hand_over() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(size_));
    size_ = 0;
}

}  // namespace vort
