// Text files, read the way formatted stream extraction reads them, only faster.
//
// A TextInput has the states of a standard input stream: good() until a read fails or meets the
// end of the file; once it is not good every further read fails and stores a zero or an empty
// text. It keeps a line number, so that whatever is wrong can be told with its place.
//
// A file that fails while it is read, or becomes shorter, looks as if it ended there; read_error()
// tells these apart.
//
// Reading happens in blocks of a quarter of a megabyte, which stay in a processor's cache, or of
// the whole file where that is smaller. Long lines make the buffer grow to a few times their
// length, unless they are appended to the caller's.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_descriptor.h"

namespace vort {

// Characters behind one another, in memory that is not cleared before it is filled.
struct LongText {
    std::vector<char> memory;
    std::size_t used = 0;
};

// In place of a value of errno: a file has fewer bytes than it had when it was opened.
constexpr int kBecameShorter = -1;

// What a reason for which a file cannot be opened or read is called.
std::string reason_text(int error);

class TextInput {
  public:
    // A missing or unreadable file, or a directory in a file's place, leaves is_open() false.
    // `mode` is "r", or "r+" where the file must be writable too.
    explicit TextInput(const std::string& path, const char* mode = "r");
    TextInput(const TextInput&) = delete;
    TextInput& operator=(const TextInput&) = delete;

    bool is_open() const { return file_.is_open(); }
    bool good() const { return is_open() && !failed_ && !at_end_; }
    bool failed() const { return failed_; }

    // Why the file could not be opened, or be read on where it seems to end: a value of errno,
    // kBecameShorter, or 0.
    int open_error() const { return open_error_; }
    int read_error() const { return read_error_; }

    // Whether a byte order mark stands in front, which editors show nobody. To be asked first.
    bool has_byte_order_mark();

    // Everything that has not been read. Empty where there is nothing, or no file.
    std::string rest();

    // 1-based number of the line that the next character stands on.
    long line_number() const { return line_; }

    // Next character without white space skipped, or EOF.
    int get();
    int peek();

    // Skips white space, line ends included.
    void skip_space();

    // The next word between white space. False, and an empty word, where there is none.
    bool word(std::string& out);

    // A decimal integer, as far as its characters go. False, and 0, where the next characters are
    // no number or it does not fit T.
    template <typename T>
    bool integer(T& out);

    // A floating-point number. "inf", "nan" and hexadecimal numbers are none.
    bool real(double& out);

    // The rest of the line, its end dropped. Valid until the next read. False at the end of file.
    bool line(std::string_view& out);

    // The same, appended to `out`; long lines are read right to their place.
    bool append_line(LongText& out);

  private:
    bool refill();
    std::size_t read_block(char* to, std::size_t size);
    bool append_buffered(LongText& out);
    bool append_read(LongText& out, std::size_t& got);
    bool start_item();
    void collect_number(bool floating);

    FileDescriptor file_;
    int open_error_ = 0;
    int read_error_ = 0;
    std::size_t size_ = 0;  // of a regular file, when it was opened
    std::size_t read_ = 0;
    std::vector<char> buffer_;
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    std::string number_;
    long line_ = 1;
    bool at_end_ = false;
    bool failed_ = false;
};

}  // namespace vort
