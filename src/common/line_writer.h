// Lines of text and numbers, put together faster than a stream does.
//
// For the console's long lists: pieces are appended to a buffer of this object and handed to the
// stream in large parts. Numbers look as the stream's own would: integers in decimal, doubles with
// six significant digits ("%g", as general() of number_text.h).
//
//     LineWriter out(std::cout);
//     out.integer(1).text(" pvalue=").general(0.05).end_line();
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <string_view>

#include "common/number_text.h"

namespace vort {

class LineWriter {
  public:
    explicit LineWriter(std::ostream& out) : out_(out) {}
    ~LineWriter() { hand_over(); }
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    // A line may have up to kLongestLine characters.
    LineWriter& text(std::string_view piece) {
        std::memcpy(buffer_.data() + size_, piece.data(), piece.size());
        size_ += piece.size();
        return *this;
    }
    LineWriter& integer(int value) {
        char* const at = buffer_.data() + size_;
        size_ += static_cast<std::size_t>(std::to_chars(at, at + kLongestLine, value).ptr - at);
        return *this;
    }
    LineWriter& general(double value) {
        char* const at = buffer_.data() + size_;
        size_ += static_cast<std::size_t>(write_general(value, at) - at);
        return *this;
    }
    void end_line() {
        buffer_[size_++] = '\n';
        if (size_ >= kSize) hand_over();
    }

    static constexpr std::size_t kLongestLine = 1024;

  private:
    static constexpr std::size_t kSize = std::size_t{1} << 16;

    void hand_over();

    std::ostream& out_;
    std::size_t size_ = 0;
    std::array<char, kSize + kLongestLine> buffer_;
};

}  // namespace vort
