// Lines of text and numbers, put together faster than a stream does.
//
// For the console's long lists: a line's pieces are appended to a buffer of this object, which is
// handed to the stream in large parts. Numbers look as the stream's own would: integers in
// decimal, doubles with six significant digits ("%g", as general() of number_text.h).
//
//     LineWriter out(std::cout);
//     out.end(out.begin().integer(DecimalDigits(1)).text(" pvalue=").general(0.05));
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <string_view>

#include "common/decimal_digits.h"
#include "common/number_text.h"

namespace vort {

class LineWriter {
  public:
    // A line in the making: no more than where its next character goes, so that it lives in a
    // register.
    class Line {
      public:
        Line text(std::string_view piece) const {
            std::memcpy(at_, piece.data(), piece.size());
            return Line(at_ + piece.size());
        }
        Line integer(const DecimalDigits& value) const { return Line(value.write(at_)); }
        Line general(double value) const { return Line(write_general(value, at_)); }

      private:
        friend class LineWriter;
        explicit Line(char* at) : at_(at) {}

        char* at_;
    };

    explicit LineWriter(std::ostream& out) : out_(out) {}
    ~LineWriter() { hand_over(); }
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    // A line may have up to kLongestLine characters, with room for a number to spare: a number is
    // written in place, with up to kGeneralLength characters before the ones behind it are dropped.
    Line begin() { return Line(buffer_.data() + size_); }
    void end(Line line) {
        *line.at_++ = '\n';
        size_ = static_cast<std::size_t>(line.at_ - buffer_.data());
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
