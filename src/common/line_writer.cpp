#include "common/line_writer.h"

#include <charconv>
#include <ostream>

#include "common/number_text.h"

namespace vort {

LineWriter& LineWriter::integer(int value) {
    char* const at = buffer_.data() + size_;
    size_ += static_cast<std::size_t>(std::to_chars(at, at + kLongestLine, value).ptr - at);
    return *this;
}

LineWriter& LineWriter::general(double value) {
    char* const at = buffer_.data() + size_;
    size_ += static_cast<std::size_t>(write_general(value, at) - at);
    return *this;
}

void LineWriter::end_line() {
    buffer_[size_++] = '\n';
    if (size_ >= kSize) hand_over();
}

void LineWriter::hand_over() {
    out_.write(buffer_.data(), static_cast<std::streamsize>(size_));
    size_ = 0;
}

}  // namespace vort
